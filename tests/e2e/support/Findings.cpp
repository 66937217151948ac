#include "e2e/support/Findings.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

namespace Orvanta {

namespace {

Finding ToFinding(const nlohmann::json& message) {
    const nlohmann::json& position = message.at("positions").at(0);
    return {message.at("code").get<std::string>(), message.at("level").get<unsigned>(),
            position.at("file").get<std::string>(), position.at("line").get<unsigned>(),
            message.at("message").get<std::string>()};
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Finding& finding) {
    return stream << finding.file << ':' << finding.line << ": " << finding.code << " (level " << finding.level
                  << "): " << finding.message;
}

std::vector<Finding> FindingsOfReport(std::string_view text) {
    std::vector<Finding> findings;
    const nlohmann::json report = nlohmann::json::parse(text);
    for (const nlohmann::json& message : report.at("warnings")) {
        findings.push_back(ToFinding(message));
    }
    return findings;
}

std::vector<Finding> FindingsOfLines(std::string_view text) {
    std::vector<Finding> findings;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos) {
            throw std::runtime_error("the last line has no end");
        }
        findings.push_back(ToFinding(nlohmann::json::parse(text.substr(0, end))));
        text.remove_prefix(end + 1);
    }
    return findings;
}

std::vector<std::string> MessagesOf(const std::vector<Finding>& findings) {
    std::vector<std::string> messages;
    for (const Finding& finding : findings) {
        messages.push_back(finding.message);
    }
    return messages;
}

} // namespace Orvanta
