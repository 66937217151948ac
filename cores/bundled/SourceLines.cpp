#include "bundled/SourceLines.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Text.h"

namespace Orvanta {

std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(TakeLine(text));
    }
    return lines;
}

OrvlogConverter::MessagePosition SourceLines::At(const std::string& path, std::uint32_t line) {
    const std::vector<std::string_view>& lines = Load(path).lines;
    const auto textOf = [&](std::size_t number) {
        return number >= 1 && number <= lines.size() ? std::string(lines[number - 1]) : std::string();
    };
    OrvlogConverter::MessagePosition position;
    position.file = path;
    position.line = line;
    position.prevLine = line > 1 ? textOf(line - 1) : "";
    position.currLine = textOf(line);
    position.nextLine = textOf(std::size_t{line} + 1);
    return position;
}

const SourceLines::File& SourceLines::Load(const std::string& path) {
    // The entry is made before the reading, so that a file that can't be read is tried only once.
    const auto [entry, isNew] = files_.try_emplace(path);
    File& file = entry->second;
    if (isNew) {
        try {
            file.text = ReadWholeFile(path);
        } catch (const ZelmException&) {
            return file; // a finding without its source text is still a finding
        }
        file.lines = SplitLines(file.text);
    }
    return file;
}

} // namespace Orvanta
