#include "app/ShownFindings.h"

#include "platform/Paths.h"
#include "render/Escapes.h"
#include "render/Finding.h"

#include <iterator>
#include <string_view>

namespace Orvanta {

using namespace OrvlogConverter;

namespace {

constexpr std::string_view Plain = "\x1B[0m";
constexpr std::string_view Bold = "\x1B[1m";
constexpr std::string_view ColoursOfLevels[LevelRanks] = {"\x1B[31m", "\x1B[33m", "\x1B[36m", "\x1B[36m"};
constexpr std::uint32_t LevelsByRank[LevelRanks] = {1, 2, 3, 0};

std::string FromCurrentFolder(const std::string& file) {
    const std::string folder = CurrentDirectory();
    const bool isBelow =
        file.size() > folder.size() + 1 && file.starts_with(folder) && IsSeparator(file[folder.size()]);
    return isBelow ? file.substr(folder.size() + 1) : file;
}

} // namespace

bool ShownFindings::Write(const ReportMessage& message) {
    if (!IsAboutCode(message) || message.falseAlarm) {
        return true;
    }
    ++count_;
    gateMatches_ += gate_ && gate_->Matches(message) ? 1U : 0U;
    const std::size_t rank = LevelRank(message.level);
    if (most_ == 0 || (worst_.size() == most_ && rank >= std::prev(worst_.end())->first)) {
        return true;
    }
    const Finding finding = FindingOf(message);
    std::string text = "[";
    AppendEscaped(text, finding.rule, TextForm::Line);
    text += "] ";
    AppendEscaped(text, finding.text, TextForm::Line);
    worst_.emplace(rank, Kept{std::string(finding.file), finding.line, std::move(text)});
    if (worst_.size() > most_) {
        worst_.erase(std::prev(worst_.end()));
    }
    return true;
}

std::string ShownFindings::Text(Colours colours) const {
    const bool isColoured = colours == Colours::Yes;
    std::string text;
    for (const auto& [rank, finding] : worst_) {
        text += isColoured ? Bold : "";
        AppendEscaped(text, FromCurrentFolder(finding.file), TextForm::Line);
        text += ":" + std::to_string(finding.line) + ": ";
        text += isColoured ? ColoursOfLevels[rank] : "";
        text += LevelWord(LevelsByRank[rank]);
        text += ": ";
        text += isColoured ? Plain : "";
        text += finding.text + "\n";
    }
    if (!worst_.empty() && count_ > worst_.size()) {
        text += "... and " + std::to_string(count_ - worst_.size()) + " more\n";
    }
    return text;
}

} // namespace Orvanta
