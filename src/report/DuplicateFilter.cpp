#include "report/DuplicateFilter.h"

#include <string>

namespace OrvlogConverter {

Orvanta::Fingerprint FingerprintOf(const ReportMessage& message) {
    Orvanta::FingerprintBuilder fields;
    fields.Add(message.code).Add(message.message).Add(message.sastId);
    // The number of positions too, so that no position can be taken for fields of another message.
    fields.Add(message.cwe).Add(message.level).Add(message.falseAlarm ? 1 : 0).Add(message.positions.size());
    for (const MessagePosition& position : message.positions) {
        for (const std::string* text : {&position.file, &position.prevLine, &position.currLine, &position.nextLine}) {
            fields.Add(*text);
        }
        for (const std::uint32_t number : {position.line, position.prevHash, position.currHash, position.nextHash}) {
            fields.Add(number);
        }
    }
    return fields.Value();
}

bool DuplicateFilter::Accept(const ReportMessage& message) {
    return seen_.insert(FingerprintOf(message)).second;
}

} // namespace OrvlogConverter
