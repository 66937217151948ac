#pragma once

#include "platform/Console.h"
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

/// Says of a file that no other one could take its place.
inline void TellInPlace(const std::string& path) {
    Orvanta::PrintLine("Note: " + path +
                       " is overwritten where it stands, as nothing can take its place: whoever reads it "
                       "meanwhile, and a kill, meets a part of it");
}

} // namespace OrvlogConverter
