#include "analysis/StatusText.h"

#include "report/TextColumns.h"

namespace Orvanta {

namespace {

// "M:SS", from an hour on "H:MM:SS".
std::string TimeText(std::chrono::seconds time) {
    constexpr long long SecondsPerMinute = 60;
    const auto padded = [](long long number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    const long long minutes = time.count() / SecondsPerMinute;
    const std::string seconds = padded(time.count() % SecondsPerMinute);
    if (minutes < SecondsPerMinute) {
        return std::to_string(minutes) + ':' + seconds;
    }
    return std::to_string(minutes / SecondsPerMinute) + ':' + padded(minutes % SecondsPerMinute) + ':' + seconds;
}

// The path as far as there is room behind `line`; at least some of its name, or nothing.
std::string PathPart(const RunStatus& status, std::size_t room) {
    constexpr std::size_t ShortestName = 12;
    constexpr const char* Cut = "...";
    const std::string lead = " | " + TimeText(status.longestAge) + ' ';
    const std::string path = OrvlogConverter::TextForTerminal(status.longestPath);
    if (lead.size() + OrvlogConverter::ColumnsOf(path) <= room) {
        return lead + path;
    }
    if (lead.size() + ShortestName > room) {
        return {};
    }
    return (lead + Cut).append(OrvlogConverter::LastColumns(path, room - lead.size() - std::string(Cut).size()));
}

} // namespace

std::string StatusText(const RunStatus& status, std::size_t columns) {
    const std::string parts[] = {
        '[' + std::to_string(status.finished) + '/' + std::to_string(status.total) + ']',
        ' ' + std::to_string(status.running) + " running",
        status.left ? ", " + TimeText(*status.left) + " left" : std::string(),
    };
    std::string line;
    for (const std::string& part : parts) {
        if (line.size() + part.size() > columns) {
            return line;
        }
        line += part;
    }
    if (!status.longestPath.empty()) {
        line += PathPart(status, columns - line.size());
    }
    return line;
}

} // namespace Orvanta
