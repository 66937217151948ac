#include "buildinput/SourceList.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

} // namespace

std::vector<std::string> ParseSourceList(std::string_view text) {
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    std::vector<std::string> paths;
    while (!text.empty()) {
        const std::string_view line = Trim(TakeLine(text));
        if (!line.empty()) {
            paths.push_back(AbsolutePath(line));
        }
    }
    return paths;
}

SourceList ReadSourceList(const std::string& path) {
    SourceList list;
    list.paths = ParseSourceList(ReadWholeFile(path));
    list.isEmpty = list.paths.empty();
    std::erase_if(list.paths, [](const std::string& listed) {
        const PathKind kind = KindOf(listed);
        return kind == PathKind::Nothing || kind == PathKind::Folder;
    });
    return list;
}

} // namespace Orvanta
