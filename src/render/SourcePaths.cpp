#include "render/SourcePaths.h"

#include "platform/Paths.h"
#include "platform/Text.h"
#include "report/SourceRootTransformer.h"

#include <algorithm>

namespace OrvlogConverter {

using Orvanta::PathRules;

namespace {

// Reports of Windows are rendered on Linux too, so a path is judged by its look and not by this system.
bool HasDrive(std::string_view path) noexcept {
    return path.size() > 1 && path[1] == ':' && Orvanta::ToLowerAscii(path[0]) >= 'a' &&
           Orvanta::ToLowerAscii(path[0]) <= 'z';
}

// Whose path it is, as far as its look tells: this system's where it tells nothing.
PathRules RulesOf(std::string_view path) noexcept {
    // A backslash alone proves nothing: on Linux it may be part of a name.
    const bool isOfWindows =
        HasDrive(path) || path.starts_with("\\\\") ||
        (path.starts_with(SourceRootMarker) && path.substr(SourceRootMarker.size()).starts_with('\\'));
    return isOfWindows ? PathRules::Windows : Orvanta::HostPathRules();
}

// Folds the separators of paths that look like those of Windows; in others a backslash is part of a name.
std::string WithSlashes(std::string_view path) {
    std::string text(path);
    if (RulesOf(path) == PathRules::Windows) {
        std::replace(text.begin(), text.end(), '\\', '/');
    }
    return text;
}

// Of a path with "/" between its names, whichever system it comes from.
bool IsAbsolute(std::string_view path) noexcept {
    return path.starts_with('/') || HasDrive(path);
}

std::string WithoutSlashAtEnd(std::string path) {
    path.erase(path.find_last_not_of('/') + 1);
    return path;
}

// What stands behind `folder` and a slash; absent when the path does not begin so.
std::optional<std::string_view> Behind(std::string_view path, std::string_view folder) noexcept {
    // The slash behind the folder belongs to the test: "/src2/a.c" does not lie below "/src".
    const bool isBelow = path.size() > folder.size() + 1 && path[folder.size()] == '/' &&
                         (HasDrive(path) ? Orvanta::EqualsIgnoringCase(path.substr(0, folder.size()), folder)
                                         : path.starts_with(folder));
    return isBelow ? std::optional(path.substr(folder.size() + 1)) : std::nullopt;
}

} // namespace

SourcePaths::SourcePaths(const std::string& root)
    : given_(WithoutSlashAtEnd(WithSlashes(root))),
      absolute_(WithoutSlashAtEnd(WithSlashes(Orvanta::AbsolutePath(root.empty() ? "." : root)))) {}

std::optional<std::string> SourcePaths::BelowRoot(std::string_view file) const {
    const std::string path = WithSlashes(file);
    // The marker stands for the root itself. The root as it was given comes last, for reports whose paths begin with it
    // in the same spelling.
    for (const std::string_view folder : {SourceRootMarker, std::string_view(absolute_), std::string_view(given_)}) {
        if (folder.empty() && given_.empty()) {
            continue; // no root was given, and an absolute path does not lie below nothing
        }
        if (const std::optional<std::string_view> rest = Behind(path, folder)) {
            return std::string(*rest);
        }
    }
    if (IsAbsolute(path)) {
        return std::nullopt;
    }
    // What is relative is taken as told from the root.
    return path.starts_with("./") ? path.substr(2) : path;
}

const std::string& SourcePaths::Shown(std::string_view file) const {
    if (file != lastFile_ || lastShown_.empty()) {
        lastShown_ = BelowRoot(file).value_or(WithSlashes(file));
        lastFile_ = file;
    }
    return lastShown_;
}

std::string SourcePaths::RootAddress() const {
    return AddressOf(absolute_ + "/");
}

std::string AddressOf(std::string_view path) {
    // The characters that an address holds as they are, beside letters and digits. All others are encoded: "#" and "?"
    // would even cut the path off.
    constexpr std::string_view Plain = "/-._~";
    std::string address = path.starts_with("//") ? "file:" : path.starts_with('/') ? "file://" : "";
    if (HasDrive(path)) {
        // The colon of a drive is the one that need not be encoded.
        address = "file:///" + std::string(path.substr(0, 2));
        path.remove_prefix(2);
    }
    for (const char character : path) {
        const char lower = Orvanta::ToLowerAscii(character);
        if ((lower >= 'a' && lower <= 'z') || Orvanta::IsDigit(character) || Plain.find(character) != Plain.npos) {
            address += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            address += {'%', "0123456789ABCDEF"[byte >> 4U], "0123456789ABCDEF"[byte & 0xFU]};
        }
    }
    return address;
}

} // namespace OrvlogConverter
