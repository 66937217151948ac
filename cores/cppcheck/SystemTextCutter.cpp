#include "cppcheck/SystemTextCutter.h"

#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>

namespace Orvanta {

namespace {

bool IsPlainExtension(std::string_view extension) {
    return std::all_of(extension.begin(), extension.end(), [](char character) {
        const char lower = ToLowerAscii(character);
        return (lower >= 'a' && lower <= 'z') || IsDigit(character) || character == '.' || character == '+';
    });
}

} // namespace

std::string AliasOf(std::size_t index, std::string_view path) {
    const std::string_view extension = ExtensionOf(path);
    return "f" + std::to_string(index) + std::string(IsPlainExtension(extension) ? extension : "");
}

std::optional<std::size_t> IndexOfAlias(std::string_view alias) {
    if (!alias.starts_with('f')) {
        return std::nullopt;
    }
    std::size_t index = 0;
    const char* const end = alias.data() + alias.size();
    const auto [rest, error] = std::from_chars(alias.data() + 1, end, index);
    if (error != std::errc() || (rest != end && *rest != '.')) {
        return std::nullopt;
    }
    return index;
}

CutText CutSystemText(std::string_view text, const std::string& sourcePath, const std::string& currentDirectory) {
    CutText cut;
    MarkedText marked(text, sourcePath, currentDirectory);
    std::optional<std::size_t> writtenFile; // where the cut text stands, so that markers are written only for jumps
    std::uint32_t writtenNumber = 0;
    for (MarkedLine line; marked.ReadLine(line);) {
        if (!line.file || marked.Files()[*line.file].isSystem) {
            continue;
        }
        const bool isJump = line.file != writtenFile || line.number != writtenNumber;
        if (isJump && Trim(line.text).empty()) {
            continue;
        }
        if (isJump) {
            cut.text += "# " + std::to_string(line.number) + " \"";
            cut.text += AliasOf(*line.file, marked.Files()[*line.file].path) + "\"\n";
        }
        cut.text += line.text;
        cut.text += '\n';
        writtenFile = line.file;
        writtenNumber = line.number + 1;
    }
    cut.files = marked.Files();
    return cut;
}

} // namespace Orvanta
