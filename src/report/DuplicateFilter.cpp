#include "report/DuplicateFilter.h"

#include "platform/Hash.h"

#include <string>
#include <string_view>

namespace OrvlogConverter {

namespace {

void AppendNumber(std::string& bytes, std::uint64_t number) {
    for (int shift = 0; shift < 64; shift += 8) {
        bytes += static_cast<char>(number >> shift);
    }
}

void AppendText(std::string& bytes, std::string_view text) {
    AppendNumber(bytes, text.size()); // so that no other split of the same bytes looks the same
    bytes += text;
}

std::string AllFields(const ReportMessage& message) {
    std::string bytes;
    AppendText(bytes, message.code);
    AppendText(bytes, message.message);
    AppendText(bytes, message.sastId);
    for (const std::uint64_t number : {std::uint64_t{message.cwe}, std::uint64_t{message.level},
                                       std::uint64_t{message.falseAlarm}, std::uint64_t{message.positions.size()}}) {
        AppendNumber(bytes, number);
    }
    for (const MessagePosition& position : message.positions) {
        for (const std::string* text : {&position.file, &position.prevLine, &position.currLine, &position.nextLine}) {
            AppendText(bytes, *text);
        }
        for (const std::uint32_t number : {position.line, position.prevHash, position.currHash, position.nextHash}) {
            AppendNumber(bytes, number);
        }
    }
    return bytes;
}

} // namespace

bool DuplicateFilter::Accept(const ReportMessage& message) {
    return seen_.insert(FingerprintOf(message)).second;
}

DuplicateFilter::Fingerprint DuplicateFilter::FingerprintOf(const ReportMessage& message) {
    constexpr std::uint64_t OtherSeed = 0x9e3779b97f4a7c15U;
    const std::string bytes = AllFields(message);
    return {Orvanta::Fnv1a(bytes), Orvanta::Fnv1a(bytes, OtherSeed)};
}

} // namespace OrvlogConverter
