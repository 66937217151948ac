#pragma once

#include "platform/Files.h"

#include <string>
#include <utility>

namespace Orvanta {

/// A file that somebody else writes at a path of ours: removed by the destructor, whether it was written or not.
class ScopedFile {
public:
    /// Touches no disk: a file that stands there already is removed at the end like one made later.
    explicit ScopedFile(std::string path) : path_(std::move(path)) {}

    ~ScopedFile() { RemoveFile(path_); }

    ScopedFile(const ScopedFile&) = delete;
    ScopedFile& operator=(const ScopedFile&) = delete;

    /// Where the file is to be written.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

} // namespace Orvanta
