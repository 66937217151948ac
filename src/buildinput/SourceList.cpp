#include "buildinput/SourceList.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

std::vector<std::string> ParseSourceList(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    std::vector<std::string> paths;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
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
    std::erase_if(list.paths, [](const std::string& listed) { return !PathExists(listed) || IsDirectory(listed); });
    return list;
}

} // namespace Orvanta
