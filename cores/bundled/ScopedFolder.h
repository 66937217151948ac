#pragma once

#include <string>

namespace Orvanta {

/// An empty folder that is there for as long as the object, with all that is put into it.
class ScopedFolder {
public:
    /// Makes the folder; what a killed run has left at `path` goes.
    /// \throws ZelmException
    explicit ScopedFolder(std::string path);
    ~ScopedFolder();
    ScopedFolder(const ScopedFolder&) = delete;
    ScopedFolder& operator=(const ScopedFolder&) = delete;

    /// As it was given.
    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

} // namespace Orvanta
