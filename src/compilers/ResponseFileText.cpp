#include "compilers/ResponseFileText.h"

#include <algorithm>
#include <string_view>

namespace Orvanta {

namespace {

// Without it, cl takes the text for one in the system's code page.
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

// A backslash takes the meaning from any character.
std::string QuotedForGcc(std::string_view word) {
    if (word.empty()) {
        // Without quotes an empty word would vanish.
        return "\"\"";
    }
    std::string quoted;
    for (const char character : word) {
        if (std::string_view(" \t\n\v\f\r\\\"'").find(character) != std::string_view::npos) {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted;
}

// Inside quotes, a backslash takes the meaning from a quote and from a backslash.
std::string QuotedForKeil(std::string_view word) {
    std::string quoted = "\"";
    for (const char character : word) {
        if (std::string_view("\"'\\").find(character) != std::string_view::npos) {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted += '"';
}

// A backslash means something before a double quote only, as on a command line of Windows.
std::string QuotedForCl(std::string_view word) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char character : word) {
        if (character == '"') {
            // Those before the quote are there once already: doubled they stand for themselves, and one more protects
            // the quote.
            quoted.append(backslashes + 1, '\\');
        }
        backslashes = character == '\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    // The closing quote must not be protected by what the word ends in.
    return quoted.append(backslashes, '\\') += '"';
}

// One word a line: a line end separates words in every one of these languages.
template <class Quote>
std::string Lines(std::span<const std::string> words, Quote quote) {
    std::string text;
    for (const std::string& word : words) {
        text += quote(word);
        text += '\n';
    }
    return text;
}

bool IsAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80U; });
}

} // namespace

std::optional<std::string> ResponseFileText(CompilerType type, std::span<const std::string> words) {
    switch (type) {
    case CompilerType::Gcc:
    case CompilerType::Clang:
    case CompilerType::Keil6:
    case CompilerType::GccARM:
    case CompilerType::Qcc:
    case CompilerType::XC8:
        return Lines(words, &QuotedForGcc);
    case CompilerType::Cl:
    case CompilerType::ClangCl: {
        std::string text = Lines(words, &QuotedForCl);
        // Plain text is the same in every code page.
        return IsAscii(text) ? text : text.insert(0, ByteOrderMark);
    }
    case CompilerType::Keil5:
    case CompilerType::Keil5Gnu:
        return Lines(words, &QuotedForKeil);
    case CompilerType::TiArmCGT:
    case CompilerType::IARArm_v7_OrOlder:
    case CompilerType::IARArm:
        return Lines(words, &QuotedForCl);
    case CompilerType::Unknown:
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<std::string> ResponseFileArguments(CompilerType type, const std::string& path) {
    switch (type) {
    case CompilerType::Keil5:
    case CompilerType::Keil5Gnu:
        return {"--via=" + path};
    case CompilerType::TiArmCGT:
        return {"--cmd_file=" + path};
    case CompilerType::IARArm_v7_OrOlder:
    case CompilerType::IARArm:
        return {"-f", path};
    case CompilerType::Unknown:
    case CompilerType::Gcc:
    case CompilerType::Clang:
    case CompilerType::Keil6:
    case CompilerType::Cl:
    case CompilerType::ClangCl:
    case CompilerType::GccARM:
    case CompilerType::Qcc:
    case CompilerType::XC8:
        break;
    }
    return {'@' + path};
}

} // namespace Orvanta
