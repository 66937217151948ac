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

constexpr char FilePrefix = 'f';
constexpr char MacroPrefix = 's';

} // namespace

std::string AliasOf(AliasedFile file, std::string_view path) {
    std::string alias(1, file.origin == TextOrigin::SystemMacro ? MacroPrefix : FilePrefix);
    alias += std::to_string(file.index);
    if (const std::string_view extension = ExtensionOf(path); IsPlainExtension(extension)) {
        alias += extension;
    }
    return alias;
}

std::optional<AliasedFile> ReadAlias(std::string_view alias) {
    if (!alias.starts_with(FilePrefix) && !alias.starts_with(MacroPrefix)) {
        return std::nullopt;
    }
    AliasedFile file;
    file.origin = alias.front() == MacroPrefix ? TextOrigin::SystemMacro : TextOrigin::File;
    const char* const end = alias.data() + alias.size();
    const auto [rest, error] = std::from_chars(alias.data() + 1, end, file.index);
    if (error != std::errc() || (rest != end && *rest != '.')) {
        return std::nullopt;
    }
    return file;
}

CutText CutSystemText(std::string_view text, const std::string& sourcePath, const std::string& currentDirectory) {
    CutText cut;
    MarkedText marked(text, sourcePath, currentDirectory);
    std::optional<AliasedFile> written; // where the cut text stands, so that markers are written only for jumps
    std::uint32_t nextNumber = 0;
    for (MarkedLine line; marked.ReadLine(line);) {
        if (!line.file || marked.Files()[*line.file].isSystem) {
            continue;
        }
        const AliasedFile file = {*line.file, line.origin};
        const bool isJump = written != file || nextNumber != line.number;
        if (isJump && Trim(line.text).empty()) {
            continue;
        }
        if (isJump) {
            cut.text +=
                "# " + std::to_string(line.number) + " \"" + AliasOf(file, marked.Files()[*line.file].path) + "\"\n";
        }
        cut.text += line.text;
        cut.text += '\n';
        written = file;
        nextNumber = line.number + 1;
    }
    cut.files = marked.Files();
    return cut;
}

} // namespace Orvanta
