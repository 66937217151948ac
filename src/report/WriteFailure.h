#pragma once

#include "platform/Exceptions.h"
#include "report/Exceptions.h"

#include <string>

namespace OrvlogConverter {

/// Does work on a file that its user knows as `path`. The work may be on another one, such as a file beside it or the
/// end of a link: its errors are told about `path` all the same.
/// \throws FilesystemException "Can't write to file: PATH: REASON"
template <class Work>
void NamingFile(const std::string& path, const Work& work) {
    try {
        work();
    } catch (const Orvanta::FileException& error) {
        throw FilesystemException("Can't write to file: " + path + ": " + error.Reason());
    }
}

} // namespace OrvlogConverter
