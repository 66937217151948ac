#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// A file that is there for as long as the object: engines read only files, so a text has to become one.
class ScopedFile {
public:
    /// \throws ZelmException when it can't be written; nothing is left of it then
    ScopedFile(std::string path, std::string_view text);
    ~ScopedFile();
    ScopedFile(const ScopedFile&) = delete;
    ScopedFile& operator=(const ScopedFile&) = delete;

    /// As it was given.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

} // namespace Orvanta
