#pragma once

#include "platform/Files.h"

#include <string>
#include <string_view>
#include <utility>

namespace Orvanta {

/// A file at a path of ours that is there for one purpose, and goes with the object.
class ScopedFile {
public:
    /// For a file that somebody else writes. Touches no disk: whether it was written, or stood there already, it is
    /// removed at the end.
    explicit ScopedFile(std::string path) : path_(std::move(path)) {}

    /// For programs that read only files: holds the text, in place of what stood there.
    /// \throws FileException when it can't be written; nothing is left of it then
    ScopedFile(std::string path, std::string_view text) : ScopedFile(std::move(path)) {
        OutputFile(path_, OutputFile::Mode::Replace).Append(text);
    }

    ~ScopedFile() { RemoveFile(path_); }

    ScopedFile(const ScopedFile&) = delete;
    ScopedFile& operator=(const ScopedFile&) = delete;

    /// As it was given.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

} // namespace Orvanta
