#include "analysis/UnitFailure.h"

#include "platform/Text.h"

#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::size_t LongestFailureText = 2000; // of a core's own words in the list of failures

} // namespace

OrvlogConverter::ReportMessage NotAnalyzedMessage(std::string sourcePath) {
    OrvlogConverter::ReportMessage message;
    // A finding of the highest level, so that a report by itself shows what it does not cover.
    message.code = "V008";
    message.message = "Unable to start the analysis on this file.";
    message.level = 1;
    OrvlogConverter::MessagePosition position;
    position.file = std::move(sourcePath);
    position.line = 1;
    message.positions.push_back(std::move(position));
    return message;
}

std::string CoreFailureReason(const ProcessReturnCodeException& error) {
    const CapturedOutput& output = error.Output();
    std::string reason = error.Summary();
    // A core that is silent on standard error has said why on the other one.
    const std::string_view said = Trim(output.standardError.empty() ? output.standardOutput : output.standardError);
    if (!said.empty()) {
        reason += '\n';
        reason += said.substr(0, LongestFailureText);
    }
    return reason;
}

} // namespace Orvanta
