#include "bundled/ScopedFile.h"

#include "platform/Files.h"

#include <utility>

namespace Orvanta {

ScopedFile::ScopedFile(std::string path, std::string_view text) : path_(std::move(path)) {
    try {
        OutputFile(path_, OutputFile::Mode::Replace).Append(text);
    } catch (...) {
        // A part of it may be there, and the destructor of an object that was not made is not run.
        RemoveFile(path_);
        throw;
    }
}

ScopedFile::~ScopedFile() {
    RemoveFile(path_);
}

} // namespace Orvanta
