#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What the tests look at of one finding.
struct Finding {
    std::string code;
    unsigned level = 0;
    std::string file;
    unsigned line = 0;
    std::string message;

    bool operator==(const Finding&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Finding& finding);

/// The findings of a JSON report's text. \throws the JSON library's exceptions when it is no report
[[nodiscard]] std::vector<Finding> FindingsOfReport(std::string_view text);

/// The findings of a text with one JSON object a line. \throws the same when a line is none, or the last has no end
[[nodiscard]] std::vector<Finding> FindingsOfLines(std::string_view text);

/// The message texts alone, in order.
[[nodiscard]] std::vector<std::string> MessagesOf(const std::vector<Finding>& findings);

} // namespace Orvanta
