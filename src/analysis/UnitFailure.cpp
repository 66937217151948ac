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
    // A core that is silent on standard error has said why on the other one. Its command is left out: it is another one
    // for each unit, and what fails all of them for one reason is to be told once.
    const std::string_view said = Trim(output.standardError.empty() ? output.standardOutput : output.standardError);
    return said.empty() ? "The core returned code " + std::to_string(error.ExitCode()) + " and said nothing."
                        : std::string(said.substr(0, LongestFailureText));
}

} // namespace Orvanta
