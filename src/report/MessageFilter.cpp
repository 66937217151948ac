#include "report/MessageFilter.h"

#include "platform/Text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace OrvlogConverter {

namespace {

// Of an identifier, as a source line is made of them.
bool IsWordCharacter(char character) {
    const char lower = Orvanta::ToLowerAscii(character);
    return (lower >= 'a' && lower <= 'z') || Orvanta::IsDigit(character) || character == '_';
}

// Whether one of the words stands in the line as a whole word. Looks each word of the line up: however many are
// excluded, the line is read once.
template <class Words>
bool HasWordOf(std::string_view line, const Words& words) {
    for (std::size_t begin = 0; begin < line.size();) {
        std::size_t end = begin;
        while (end < line.size() && IsWordCharacter(line[end])) {
            ++end;
        }
        if (end > begin && words.contains(line.substr(begin, end - begin))) {
            return true;
        }
        begin = end + 1;
    }
    return false;
}

} // namespace

MessageFilter::MessageFilter(IOutput* next, MessageFilterSettings settings)
    : IFilter(next), settings_(std::move(settings)), levels_(settings_.analyzers) {}

bool MessageFilter::Accept(const ReportMessage& message) {
    // The cheapest questions first.
    const MessagePosition& first = FirstPosition(message);
    if (settings_.disabledCodes.contains(message.code)) {
        return false;
    }
    if (message.falseAlarm && settings_.falseAlarms == MessageFilterSettings::FalseAlarms::Drop) {
        return false;
    }
    if (!settings_.excludedWords.empty() && HasWordOf(first.currLine, settings_.excludedWords)) {
        return false;
    }
    if (!levels_.Passes(message.code, message.level)) {
        return false;
    }
    return std::none_of(
        settings_.excludedPaths.begin(), settings_.excludedPaths.end(),
        [&first](const std::string& fragment) { return first.file.find(fragment) != std::string::npos; });
}

} // namespace OrvlogConverter
