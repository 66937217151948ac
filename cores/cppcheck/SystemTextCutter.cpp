#include "cppcheck/SystemTextCutter.h"

#include "cppcheck/FileAlias.h"
#include "platform/Text.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace Orvanta {

CutText CutSystemText(std::string_view text, const std::string& sourcePath, const std::string& currentDirectory) {
    CutText cut;
    MarkedText marked(text, sourcePath, currentDirectory);
    // Where the cut text stands, so that markers are written only for jumps.
    std::optional<std::pair<std::size_t, TextOrigin>> written;
    std::uint32_t nextNumber = 0;
    for (MarkedLine line; marked.ReadLine(line);) {
        if (!line.file || marked.Files()[*line.file].isSystem) {
            continue;
        }
        const std::pair place(*line.file, line.origin);
        const bool isJump = written != place || nextNumber != line.number;
        if (isJump && Trim(line.text).empty()) {
            continue;
        }
        if (isJump) {
            cut.text += "# " + std::to_string(line.number) + " \"" +
                        AliasOf(marked.Files()[*line.file].path, line.origin) + "\"\n";
        }
        cut.text += line.text;
        cut.text += '\n';
        written = place;
        nextNumber = line.number + 1;
    }
    cut.files = marked.Files();
    return cut;
}

} // namespace Orvanta
