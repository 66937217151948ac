#pragma once

#include "settings/SettingsMap.h"

#include <string>
#include <string_view>

namespace Orvanta {

/// Reads the text of a settings file: "key=value" lines, "#" comment lines. Relative values of path keys are taken from
/// `baseDirectory`; the mode under "analysis-mode" becomes its decimal mask.
/// \throws ZelmException for an invalid value
[[nodiscard]] SettingsMap ParseSettings(std::string_view text, std::string_view baseDirectory);

/// Reads a settings file; relative paths in it are taken from its own folder.
/// \throws ZelmException "Can't open config file " and the path, or for an invalid value
[[nodiscard]] SettingsMap ReadSettingsFile(const std::string& path);

/// A settings file on disk, with what it holds. Move-only.
class SettingsFile {
public:
    enum class Lifetime {
        Keep,   ///< the file stays
        Remove, ///< the destructor removes the file
    };

    /// Writes `settings` to `basePath` with ".cfg" appended, replacing what is there.
    /// \throws ZelmException "Can't create config file " and the path; or, before anything is written, naming the key
    /// and the value when the format can't hold one of them
    SettingsFile(SettingsMap settings, const std::string& basePath, Lifetime lifetime);
    ~SettingsFile();
    SettingsFile(SettingsFile&& other) noexcept;
    SettingsFile& operator=(SettingsFile&& other) noexcept;

    /// What the file holds.
    [[nodiscard]] const SettingsMap& Settings() const noexcept { return settings_; }

    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    void RemoveOwned() noexcept;

    SettingsMap settings_;
    std::string path_; // empty after a move
    Lifetime lifetime_;
};

} // namespace Orvanta
