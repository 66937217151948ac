#include "report/ReportMessage.h"

namespace OrvlogConverter {

const MessagePosition& FirstPosition(const ReportMessage& message) noexcept {
    static const MessagePosition nowhere;
    return message.positions.empty() ? nowhere : message.positions.front();
}

} // namespace OrvlogConverter
