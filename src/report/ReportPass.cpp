#include "report/ReportPass.h"

#include "report/Exceptions.h"

#include <string_view>

namespace OrvlogConverter {

std::size_t PassReport(const std::string& path, const ReportReceiver& receiver, const Orvanta::StopFlag& stop) {
    std::size_t count = 0;
    const auto takeMessage = [&](const ReportMessage& message, std::string_view text) {
        if (stop.IsSet()) {
            throw StoppedException();
        }
        ++count;
        receiver.takeMessage(message, text);
    };
    ReportReader(path).Read({takeMessage, receiver.takeMember});
    if (stop.IsSet()) { // standard input ends then, wherever its report is
        throw StoppedException();
    }
    return count;
}

} // namespace OrvlogConverter
