#include "platform/Paths.h"

#include "platform/Text.h"

#include <cstddef>

namespace Orvanta {

namespace {

// What stands before the first component: "/", "C:\", "C:", "\" or "\\server\share\".
struct Root {
    std::size_t nameLength = 0; // "C:" or "\\server\share"
    std::size_t length = 0;     // the name and the separators behind it
};

char PreferredSeparator(PathRules rules) {
    return rules == PathRules::Windows ? '\\' : '/';
}

// The place of the first character from there on that is no separator.
std::size_t SkipSeparators(std::string_view path, std::size_t from, PathRules rules) {
    while (from < path.size() && IsSeparator(path[from], rules)) {
        ++from;
    }
    return from;
}

// The place of the first separator from there on.
std::size_t SkipComponent(std::string_view path, std::size_t from, PathRules rules) {
    while (from < path.size() && !IsSeparator(path[from], rules)) {
        ++from;
    }
    return from;
}

bool HasDrive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' && ToLowerAscii(path[0]) >= 'a' && ToLowerAscii(path[0]) <= 'z';
}

// Two separators and a name: with a third separator it is none.
bool IsUnc(std::string_view path) {
    return path.size() >= 3 && IsSeparator(path[0], PathRules::Windows) && IsSeparator(path[1], PathRules::Windows) &&
           !IsSeparator(path[2], PathRules::Windows);
}

// The longest root that the path begins with; both lengths are 0 where there is none.
Root RootOf(std::string_view path, PathRules rules) {
    std::size_t name = 0;
    if (rules == PathRules::Windows) {
        if (IsUnc(path)) {
            const std::size_t server = SkipComponent(path, 2, rules);
            const std::size_t share = SkipComponent(path, SkipSeparators(path, server, rules), rules);
            name = share;
        } else if (HasDrive(path)) {
            name = 2;
        }
    }
    return {name, SkipSeparators(path, name, rules)};
}

// A UNC name is a root without a separator behind it.
bool IsRooted(const Root& root) {
    return root.length > root.nameLength || root.nameLength > 2;
}

// The root in its normal form; `path` starts with it.
std::string NormalizeRoot(std::string_view path, const Root& root, PathRules rules) {
    std::string normal;
    std::size_t position = 0;
    // The first of the two separators of a UNC name; the loop folds those that follow into one.
    if (root.nameLength > 2) {
        normal = "\\";
    }
    while (position < root.nameLength) {
        if (IsSeparator(path[position], rules)) {
            normal += PreferredSeparator(rules);
            position = SkipSeparators(path, position, rules);
        } else {
            normal += path[position++];
        }
    }
    if (IsRooted(root) && (normal.empty() || !IsSeparator(normal.back(), rules))) {
        normal += PreferredSeparator(rules);
    }
    return normal;
}

// Takes the last component of `path` away, where there is one behind the root that isn't itself "..".
bool RemoveLastComponent(std::string& path, std::size_t rootLength, PathRules rules) {
    std::size_t begin = path.size();
    while (begin > rootLength && !IsSeparator(path[begin - 1], rules)) {
        --begin;
    }
    if (begin == path.size() || std::string_view(path).substr(begin) == "..") {
        return false;
    }
    path.resize(begin > rootLength ? begin - 1 : rootLength);
    return true;
}

} // namespace

bool IsSeparator(char character, PathRules rules) noexcept {
    return character == '/' || (character == '\\' && rules == PathRules::Windows);
}

bool IsAbsolutePath(std::string_view path, PathRules rules) noexcept {
    const Root root = RootOf(path, rules);
    return IsRooted(root) && (rules == PathRules::Posix || root.nameLength != 0);
}

std::string_view FileNameOf(std::string_view path, PathRules rules) noexcept {
    const std::size_t root = RootOf(path, rules).length;
    std::size_t begin = path.size();
    while (begin > root && !IsSeparator(path[begin - 1], rules)) {
        --begin;
    }
    return path.substr(begin);
}

std::string_view StemOf(std::string_view path, PathRules rules) noexcept {
    const std::string_view name = FileNameOf(path, rules);
    return name.substr(0, name.size() - ExtensionOf(path, rules).size());
}

std::string_view ExtensionOf(std::string_view path, PathRules rules) noexcept {
    const std::string_view name = FileNameOf(path, rules);
    const std::size_t point = name.rfind('.');
    // A name that begins with its only point, such as ".gitignore", is a hidden file and has no extension.
    if (point == std::string_view::npos || point == 0 || name == "..") {
        return {};
    }
    return name.substr(point);
}

std::string_view DirectoryOf(std::string_view path, PathRules rules) noexcept {
    const std::size_t root = RootOf(path, rules).length;
    std::size_t end = path.size() - FileNameOf(path, rules).size();
    // Not into the root: of "/a" it is "/" and not an empty text.
    while (end > root && IsSeparator(path[end - 1], rules)) {
        --end;
    }
    return path.substr(0, end);
}

std::string JoinPath(std::string_view base, std::string_view path, PathRules rules) {
    if (base.empty() || IsAbsolutePath(path, rules)) {
        return std::string(path);
    }
    const Root root = RootOf(path, rules);
    const Root baseRoot = RootOf(base, rules);
    if (root.nameLength != 0) { // "C:name": what it is relative to is known only when the base is on that drive
        if (!EqualsIgnoringCase(path.substr(0, root.nameLength), base.substr(0, baseRoot.nameLength))) {
            return std::string(path);
        }
        path.remove_prefix(root.nameLength);
    } else if (root.length != 0) { // "\name": absolute but for the drive
        return std::string(base.substr(0, baseRoot.nameLength)).append(path);
    }
    std::string joined;
    joined.reserve(base.size() + 1 + path.size());
    joined = base;
    // "C:" and "name" is "C:name": a separator would make it absolute.
    const bool isBareDrive = !IsRooted(baseRoot) && baseRoot.nameLength == base.size();
    if (!path.empty() && !IsSeparator(base.back(), rules) && !isBareDrive) {
        joined += PreferredSeparator(rules);
    }
    joined += path;
    return joined;
}

std::string NormalizePath(std::string_view path, PathRules rules) {
    const Root root = RootOf(path, rules);
    const bool isRooted = IsRooted(root);
    std::string normal;
    normal.reserve(path.size() + 1);
    normal += NormalizeRoot(path, root, rules);
    const std::size_t rootLength = normal.size();

    for (std::size_t begin = root.length; begin < path.size();) {
        const std::size_t end = SkipComponent(path, begin, rules);
        const std::string_view component = path.substr(begin, end - begin);
        begin = SkipSeparators(path, end, rules);
        if (component == ".") {
            continue;
        }
        // Above a root there is nothing, so ".." stays there; of a relative path it has to be kept.
        if (component == ".." && (RemoveLastComponent(normal, rootLength, rules) || isRooted)) {
            continue;
        }
        if (normal.size() > rootLength) {
            normal += PreferredSeparator(rules);
        }
        normal += component;
    }
    // An empty text would be no path at all.
    return normal.empty() && !path.empty() ? "." : normal;
}

std::string AbsolutePath(std::string_view path) {
    return NormalizePath(IsAbsolutePath(path) ? std::string(path) : JoinPath(CurrentDirectory(), path));
}

std::string ComparablePath(std::string_view path, PathRules rules) {
    // ASCII only: which other letters are the same depends on the volume.
    return rules == PathRules::Windows ? ToLowerAscii(path) : std::string(path);
}

} // namespace Orvanta
