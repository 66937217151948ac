#include "analysis/PathScrubber.h"

#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr std::string_view Separators = "/\\";

// With its point. What is longer is a name with a point in it, and tells something.
constexpr std::size_t LongestExtension = 5;

constexpr std::string_view SystemFolders[] = {
    "/usr/", "/opt/", "/lib/", "/lib64/", "/bin/", "/etc/", "/dev/", "/proc/", "/program files", "/windows/",
};

// The longer ones first: "-include" is no "-i" with a value.
constexpr std::string_view PathFlags[] = {
    "-include-pch", "-idirafter", "-isysroot", "-isystem", "-imacros", "-include", "-iprefix", "-iquote",
    "-I",           "-L",         "-B",        "-F",       "-D",       "-U",       "/I",       "/D",
};

bool IsSystemPath(std::string_view path) {
    if (path.size() > 2 && path[1] == ':') {
        path.remove_prefix(2);
    }
    std::string folded = ToLowerAscii(path);
    std::replace(folded.begin(), folded.end(), '\\', '/');
    return std::any_of(std::begin(SystemFolders), std::end(SystemFolders),
                       [&folded](std::string_view folder) { return folded.starts_with(folder); });
}

bool IsPathCharacter(char character) {
    const char lower = ToLowerAscii(character);
    return IsDigit(character) || (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(character) >= 0x80U ||
           std::string_view("/\\._-+~@%#").find(character) != std::string_view::npos;
}

bool IsAbsolute(std::string_view path) {
    return IsAbsolutePath(path, PathRules::Posix) || IsAbsolutePath(path, PathRules::Windows);
}

// The end of the path that begins at `begin`. The colon of a drive belongs to it, and no full stop at its end.
std::size_t EndOfPath(std::string_view text, std::size_t begin) {
    std::size_t end = begin;
    const auto isDrive = [&] {
        return end == begin + 1 && text[end] == ':' && end + 1 < text.size() &&
               Separators.find(text[end + 1]) != std::string_view::npos;
    };
    while (end < text.size() && (IsPathCharacter(text[end]) || isDrive())) {
        ++end;
    }
    while (end > begin + 1 && text[end - 1] == '.') {
        --end;
    }
    return end;
}

} // namespace

const std::string& PathScrubber::NameFor(std::string_view name) {
    const auto [entry, isNew] = names_.try_emplace(std::string(name));
    if (isNew) {
        const std::string_view extension = ExtensionOf(name);
        entry->second = "n" + std::to_string(names_.size());
        entry->second += extension.size() <= LongestExtension ? extension : std::string_view();
    }
    return entry->second;
}

std::string PathScrubber::Path(std::string_view path) {
    if (path.empty() || path.front() == '<' || IsSystemPath(path)) {
        return std::string(path);
    }
    paths_.emplace(path);
    if (IsAbsolute(path)) {
        folders_.emplace(DirectoryOf(path));
    }
    std::string scrubbed;
    while (!path.empty()) {
        const std::size_t size = std::min(path.find_first_of(Separators), path.size());
        const std::string_view name = path.substr(0, size);
        const bool isDrive = scrubbed.empty() && size == 2 && name[1] == ':';
        const bool tellsNothing = name.empty() || name == "." || name == ".." || isDrive;
        if (!tellsNothing && size == path.size()) {
            paths_.emplace(name);
        }
        scrubbed += tellsNothing ? std::string(name) : NameFor(name);
        scrubbed += path.substr(size, 1);
        path.remove_prefix(std::min(size + 1, path.size()));
    }
    return scrubbed;
}

bool PathScrubber::IsPath(std::string_view token, Certainty wanted) const {
    if (paths_.contains(std::string(token))) {
        return true;
    }
    if (wanted == Certainty::Likely) {
        return token.find_first_of(Separators) != std::string_view::npos &&
               token.find_first_not_of("/\\.") != std::string_view::npos;
    }
    // "/%s" is a format: only what lies in a folder of a known file is a path for certain.
    for (std::string_view folder = DirectoryOf(token); folder.size() > 1 && IsAbsolute(folder);
         folder = DirectoryOf(folder)) {
        if (folders_.contains(std::string(folder))) {
            return true;
        }
        if (DirectoryOf(folder).size() == folder.size()) {
            break; // a root
        }
    }
    return false;
}

std::string PathScrubber::Rewrite(std::string_view text, Certainty wanted) {
    if (paths_.contains(std::string(text))) {
        return Path(text); // one with blanks in it
    }
    std::string scrubbed;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = EndOfPath(text, at);
        const std::string_view token = text.substr(at, std::max(end, at + 1) - at);
        scrubbed += IsPath(token, wanted) ? Path(token) : std::string(token);
        at += token.size();
    }
    return scrubbed;
}

std::string PathScrubber::Words(std::string_view text) {
    return Rewrite(text, Certainty::Likely);
}

std::string PathScrubber::KnownPaths(std::string_view text) {
    return Rewrite(text, Certainty::Sure);
}

std::string PathScrubber::Argument(std::string_view word) {
    const auto* const flag = std::find_if(std::begin(PathFlags), std::end(PathFlags),
                                          [word](std::string_view known) { return word.starts_with(known); });
    if (flag != std::end(PathFlags)) {
        const std::string_view value = word.substr(flag->size());
        const bool isFolder = !value.empty() && *flag != "-D" && *flag != "-U" && *flag != "/D";
        return std::string(*flag) + (isFolder ? Path(value) : Words(value));
    }
    const std::size_t equals = word.starts_with('-') ? word.find('=') : std::string_view::npos;
    if (equals != std::string_view::npos) {
        return std::string(word.substr(0, equals + 1)) + Words(word.substr(equals + 1));
    }
    if (word.starts_with('-') && word.find_first_of(Separators) == std::string_view::npos) {
        return std::string(word);
    }
    // With a point in it, it is a file more likely than a value.
    return word.find('.') != std::string_view::npos && !word.starts_with('-') ? Path(word) : Words(word);
}

} // namespace Orvanta
