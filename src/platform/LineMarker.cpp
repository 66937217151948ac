#include "platform/LineMarker.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <charconv>
#include <cstddef>
#include <unordered_set>
#include <utility>

namespace Orvanta {

namespace {

bool IsOctalDigit(char character) {
    return character >= '0' && character <= '7';
}

// Each flag is one digit; those between are blanks.
void ReadFlags(std::string_view flags, LineMarker& marker) {
    for (const char flag : flags) {
        marker.entersFile |= flag == '1';
        marker.isSystemHeader |= flag == '3';
    }
}

} // namespace

std::optional<LineMarker> ReadLineMarker(std::string_view line) {
    line = Trim(line);
    if (!line.starts_with('#')) {
        return std::nullopt;
    }
    line = Trim(line.substr(1));
    if (line.starts_with("line")) {
        line = Trim(line.substr(4));
    }
    LineMarker marker;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), marker.line);
    if (error != std::errc()) {
        return std::nullopt;
    }
    line = Trim(line.substr(static_cast<std::size_t>(end - line.data())));
    // The file stays the same: compilers write "#line 12" too.
    if (line.empty()) {
        return marker;
    }
    // From behind: the name may hold quotes, the flags do not.
    const std::size_t close = line.rfind('"');
    if (line.front() != '"' || close == 0) {
        return std::nullopt;
    }
    marker.quotedName = line.substr(1, close - 1);
    ReadFlags(line.substr(close + 1), marker);
    return marker;
}

std::string UnquotedName(std::string_view quotedName) {
    std::string name;
    name.reserve(quotedName.size());
    for (std::size_t i = 0; i < quotedName.size(); ++i) {
        const std::string_view rest = quotedName.substr(i);
        // No other escape of one letter: "\n" in a name of Windows is a separator and a letter.
        if (rest.starts_with("\\\\") || rest.starts_with("\\\"")) {
            name += rest[1];
            ++i;
        } else if (rest.size() > 3 && rest[0] == '\\' && IsOctalDigit(rest[1]) && IsOctalDigit(rest[2]) &&
                   IsOctalDigit(rest[3])) {
            name += static_cast<char>((rest[1] - '0') * 64 + (rest[2] - '0') * 8 + (rest[3] - '0'));
            i += 3;
        } else {
            name += rest[0];
        }
    }
    return name;
}

std::string QuotedName(std::string_view name) {
    std::string quoted;
    for (const char character : name) {
        if (character == '\\' || character == '"') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted;
}

bool NamesNoFile(std::string_view name) noexcept {
    return name.empty() || name.front() == '<' || name.ends_with("//");
}

std::string PathOfName(const std::string& name, std::string_view currentFile, std::string_view directory) {
    const bool isRelative = !IsAbsolutePath(name, PathRules::Windows) && !IsAbsolutePath(name, PathRules::Posix);
    if (!isRelative) {
        return name;
    }
    std::string path = JoinPath(directory, name);
    if (!LookAt(path).IsThere()) {
        // Generators name their grammars as they were called, which need not be from where the compiler runs.
        std::string besideFile = JoinPath(DirectoryOf(currentFile), name);
        return LookAt(besideFile).IsThere() ? besideFile : path;
    }
    return path;
}

std::vector<std::string> FilesNamedByMarkers(std::string_view text, const std::string& sourcePath,
                                             std::string_view directory, SystemHeaders systemHeaders) {
    std::vector<std::string> files = {sourcePath};
    std::unordered_set<std::string> known = {sourcePath};
    std::unordered_set<std::string_view> seen; // as they are written: a file is entered many times
    std::string_view last;
    const auto take = [&](const LineMarker& marker) {
        const bool isWanted = systemHeaders == SystemHeaders::Taken || !marker.isSystemHeader;
        if (!isWanted || !seen.insert(marker.quotedName).second) {
            return;
        }
        const std::string name = UnquotedName(marker.quotedName);
        if (!NamesNoFile(name)) {
            std::string path = PathOfName(name, files.back(), directory);
            if (known.insert(path).second) {
                files.push_back(std::move(path));
            }
        }
    };
    for (std::size_t at = 0; at < text.size();) {
        const std::optional<LineMarker> marker = ReadLineMarker(text.substr(at, text.find('\n', at) - at));
        // Most markers name the file that the one before has named.
        if (marker && marker->quotedName != last) {
            take(*marker);
            last = marker->quotedName;
        }
        const std::size_t next = text.find("\n#", at);
        at = next == std::string_view::npos ? text.size() : next + 1;
    }
    return files;
}

} // namespace Orvanta
