#pragma once

#include "platform/Files.h"

#include <string>
#include <utility>

namespace Orvanta {

/// A file that somebody else writes at a path of ours: removed by the destructor, whether it was written or not.
class ScopedFile {
public:
    explicit ScopedFile(std::string path) : path_(std::move(path)) {}

    ~ScopedFile() { RemoveFile(path_); }

    ScopedFile(const ScopedFile&) = delete;
    ScopedFile& operator=(const ScopedFile&) = delete;

    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

} // namespace Orvanta
