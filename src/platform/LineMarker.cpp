#include "platform/LineMarker.h"

#include "platform/Text.h"

#include <charconv>

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

} // namespace Orvanta
