#pragma once

#include "report/ReportMessage.h"

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Makes messages of tricky parts, the same ones for the same seed.
class RandomMessages {
public:
    explicit RandomMessages(std::uint32_t seed) : random_(seed) {}

    std::size_t Below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }

    /// Text in valid UTF-8 without line ends.
    std::string Text() {
        constexpr std::array<std::string_view, 20> Parts = {
            "a", "x1", "0042", "  ",   "\t", "\"",   "\\",       "//-V501",      "//-V50",           "<#~",
            "{", "}",  ", ",   "CWE-", ":",  "\x01", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "/"};
        std::string text;
        for (std::size_t count = Below(8); count > 0; --count) {
            text += Parts[Below(Parts.size())];
        }
        return text;
    }

    /// Text that may hold bytes that are no UTF-8, and line ends.
    std::string AnyText() {
        constexpr std::array<std::string_view, 8> Parts = {"\xFF", "\xC3",     "\xE2\x82", "\xED\xA0\x80",
                                                           "\r",   "\xF0\x9F", "\n",       "\xC0\xAF"};
        std::string text = Text();
        for (std::size_t count = Below(3); count > 0; --count) {
            text.insert(Below(text.size() + 1), Parts[Below(Parts.size())]);
        }
        return text;
    }

    std::string Path() {
        constexpr std::array<std::string_view, 5> Folders = {"/p/src/", "C:\\p\\src\\", "\\\\host\\p\\", "|?|/", ""};
        return std::string(Folders[Below(Folders.size())]) + "f" + Text() + ".c";
    }

    /// A message that both JSON and raw lines can hold in full: further positions lie in the first one's file.
    ReportMessage Message() {
        ReportMessage message;
        message.code = "V" + std::to_string(Below(7000));
        message.message = Text();
        message.sastId = Below(2) == 0 ? "" : "MISRA-C-8." + std::to_string(Below(15));
        message.cwe = static_cast<std::uint32_t>(Below(2) * Below(1000));
        message.level = static_cast<std::uint32_t>(Below(4));
        message.falseAlarm = Below(4) == 0;
        const std::string path = Path();
        for (std::size_t count = Below(3) + 1; count > 0; --count) {
            message.positions.push_back({path, static_cast<std::uint32_t>(Below(2147483648U)), "", "", "", 0, 0, 0});
        }
        MessagePosition& first = message.positions.front();
        first.prevLine = Text();
        first.currLine = Text();
        first.nextLine = Text();
        return message;
    }

private:
    std::mt19937 random_;
};

} // namespace OrvlogConverter
