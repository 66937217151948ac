#include "FuzzInput.h"
#include "report/Exceptions.h"
#include "report/MessageLine.h"

#include <nlohmann/json.hpp>

using namespace OrvlogConverter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const ReportMessage message = ReadMessageLine(Orvanta::FuzzText(data, size));
        std::string json;
        AppendMessageLine(json, message, LineFormat::Json);
        Orvanta::Require(json.find('\n') == std::string::npos);
        (void)ReadMessageLine(json); // what is written can be read
    } catch (const ParseException&) {
        // No message.
    } catch (const nlohmann::json::exception&) {
        // No JSON, or not that of a message.
    }
    return 0;
}
