#include "analysis/DependencyLines.h"

#include "platform/Paths.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

constexpr std::string_view IncludeMark = "<}include{>";

} // namespace

std::vector<std::string> ReadDependencyLines(std::string_view output, std::string_view directory) {
    std::vector<std::string> paths;
    while (!output.empty()) {
        const std::string_view line = TakeLine(output);
        if (line.starts_with(IncludeMark)) {
            const std::string_view path = line.substr(IncludeMark.size());
            paths.push_back(path.empty() ? std::string() : JoinPath(directory, path));
        }
    }
    return paths;
}

} // namespace Orvanta
