#include "analysis/Progress.h"

#include "platform/Console.h"

#include <algorithm>
#include <array>

namespace Orvanta {

namespace {

// By number of the stage: the order is that of ProgressStage.
constexpr std::array<std::string_view, 3> StageTexts = {"%] Analyzing: ", "%] Parsing includes: ", "%] Parsing: "};

} // namespace

std::string ProgressLine(unsigned percent, unsigned stage, std::string_view file) {
    const std::string number = std::to_string(percent);
    std::string line = "[";
    // Three places, so that the lines stand under each other up to 100.
    line.append(number.size() < 3 ? 3 - number.size() : 0, ' ');
    line += number;
    if (stage < StageTexts.size()) {
        line += StageTexts[stage];
    }
    line += file;
    return line;
}

void StdOutProgress::Step(unsigned percent, unsigned stage, std::string_view file) {
    if (display_ != Display::Shown) {
        return;
    }
    const std::lock_guard lock(progressMutex_);
    // Workers count and report in two steps, so a lower number may come later.
    highestPercent_ = std::max(highestPercent_, percent);
    WriteMessage(ProgressLine(highestPercent_, stage, file) + "\n");
}

void StdOutProgress::Finish(std::string_view summary) {
    if (display_ != Display::Hidden) {
        log_.Text(summary);
    }
}

void StdOutProgress::Message(std::string_view line) {
    log_.Line(line);
}

} // namespace Orvanta
