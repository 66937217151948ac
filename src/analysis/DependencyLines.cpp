#include "analysis/DependencyLines.h"

#include "platform/Paths.h"

#include <algorithm>

namespace Orvanta {

namespace {

constexpr std::string_view IncludeMark = "<}include{>";

} // namespace

std::vector<std::string> ReadDependencyLines(std::string_view output, std::string_view directory) {
    std::vector<std::string> paths;
    while (!output.empty()) {
        const std::size_t end = std::min(output.find('\n'), output.size());
        std::string_view line = output.substr(0, end);
        output.remove_prefix(std::min(end + 1, output.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.starts_with(IncludeMark)) {
            const std::string_view path = line.substr(IncludeMark.size());
            paths.push_back(path.empty() ? std::string() : JoinPath(directory, path));
        }
    }
    return paths;
}

} // namespace Orvanta
