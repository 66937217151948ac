#include "render/Finding.h"

#include "platform/Text.h"
#include "report/DocumentationLink.h"
#include "suppress/SuppressBase.h"

#include <algorithm>

namespace OrvlogConverter {

namespace {

// In every form: a missing path would look like a column that was left out.
constexpr std::string_view NoFile = "(no file)";

// Cuts "[name] text" into name and text.
void CutName(Finding& finding) noexcept {
    const std::size_t end = finding.text.find(']');
    // Names of rules hold no blank: "[see below] text" is text from its beginning.
    const bool isNamed = finding.text.starts_with('[') && end != std::string_view::npos && end > 1 &&
                         finding.text.substr(0, end).find(' ') == std::string_view::npos;
    if (isNamed) {
        finding.rule = finding.text.substr(1, end - 1);
        finding.text = Orvanta::Trim(finding.text.substr(end + 1));
    }
}

} // namespace

Finding FindingOf(const ReportMessage& message) noexcept {
    const MessagePosition& first = FirstPosition(message);
    // Some messages have line 0, and readers of the forms count from 1.
    Finding finding = {message.code, message.message, HasFile(message) ? std::string_view(first.file) : NoFile,
                       std::max(first.line, std::uint32_t{1})};
    // All findings of other tools share this code, so it would not tell their rules apart.
    if (message.code == "External") {
        CutName(finding);
    }
    return finding;
}

bool IsAboutCode(const ReportMessage& message) noexcept {
    return message.code != DocumentationLinkCode && message.code != OutdatedBaseCode;
}

bool HasFile(const ReportMessage& message) noexcept {
    return !Orvanta::Trim(FirstPosition(message).file).empty();
}

std::string_view LevelWord(std::uint32_t level) noexcept {
    constexpr std::string_view Words[LevelRanks] = {"high", "medium", "low", "none"};
    return Words[LevelRank(level)];
}

std::size_t LevelRank(std::uint32_t level) noexcept {
    // Level 0 and whatever lies above the three known ones share the last rank.
    return level >= 1 && level < LevelRanks ? level - 1 : LevelRanks - 1;
}

std::string_view GroupName(AnalyzerType analyzer) noexcept {
    // Without a default, so that the compiler names this place when a group is added.
    switch (analyzer) {
    case AnalyzerType::Fail:
        return "Failures";
    case AnalyzerType::GeneralAnalysis:
        return "General analysis";
    case AnalyzerType::Bits64:
        return "64-bit errors";
    case AnalyzerType::Optimization:
        return "Micro-optimizations";
    case AnalyzerType::CustomerSpecific:
        return "Customer specific";
    case AnalyzerType::Misra:
        return "MISRA";
    case AnalyzerType::Owasp:
        return "OWASP";
    case AnalyzerType::Autosar:
        return "AUTOSAR";
    case AnalyzerType::Unknown:
        break;
    }
    return "Other";
}

std::string HelpAddress(std::string_view code) {
    // Only the analyzer's own codes have a page; a made-up address would lead nowhere.
    if (CodeNumber(code) == 0 || ClassifyCode(code) == AnalyzerType::Unknown) {
        return "";
    }
    return DocumentationAddress + Orvanta::ToLowerAscii(code) + "/";
}

} // namespace OrvlogConverter
