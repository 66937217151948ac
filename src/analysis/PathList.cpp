#include "analysis/PathList.h"

#include "platform/Files.h"

#include <algorithm>

namespace Orvanta {

void WritePathList(const std::string& path, const std::vector<std::string>& listed) {
    std::string text;
    for (const std::string& line : listed) {
        text += line;
        text += '\n';
    }
    OutputFile(path, OutputFile::Mode::Replace).Append(text);
}

std::vector<std::string> ReadPathList(const std::string& path) {
    const std::string text = ReadWholeFile(path);
    std::vector<std::string> listed;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        listed.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return listed;
}

} // namespace Orvanta
