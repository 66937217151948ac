#include "analysis/PathList.h"

#include "platform/Files.h"
#include "platform/Text.h"

#include <string_view>

namespace Orvanta {

void WritePathList(const std::string& path, const std::vector<std::string>& listed) {
    std::string text;
    for (const std::string& line : listed) {
        text += line;
        text += '\n';
    }
    // In one piece, since a system call for each line would cost more than the text.
    OutputFile(path, OutputFile::Mode::Replace).Append(text);
}

std::vector<std::string> ReadPathList(const std::string& path) {
    const std::string text = ReadWholeFile(path);
    std::vector<std::string> listed;
    for (std::string_view rest = text; !rest.empty();) {
        listed.emplace_back(TakeUpTo(rest, "\n")); // a name may end in "\r"
    }
    return listed;
}

} // namespace Orvanta
