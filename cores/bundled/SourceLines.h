#pragma once

#include "report/ReportMessage.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// The lines of a text without their ends, "\n" or "\r\n"; views into it.
[[nodiscard]] std::vector<std::string_view> SplitLines(std::string_view text);

/// The lines of source files, each file read once. One thread at a time may use an object.
class SourceLines {
public:
    /// The position with the texts of its line and of the lines around it; texts stay empty where the file can't be
    /// read or has no such line.
    [[nodiscard]] OrvlogConverter::MessagePosition At(const std::string& path, std::uint32_t line);

private:
    struct File {
        std::string text;
        std::vector<std::string_view> lines; // of `text`
    };

    // A file that can't be read has no lines.
    const File& Load(const std::string& path);

    std::map<std::string, File> files_;
};

} // namespace Orvanta
