#include "FuzzInput.h"
#include "report/JsonMessageScanner.h"

#include <nlohmann/json.hpp>

using namespace OrvlogConverter;

// What the scanner takes, the library takes too, and both read the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = Orvanta::FuzzText(data, size);
    ReportMessage message;
    if (JsonMessageScanner().Scan(text, message)) {
        const nlohmann::json object = nlohmann::json::parse(text);
        Orvanta::Require(object.at("code").get<std::string>() == message.code);
        Orvanta::Require(object.at("message").get<std::string>() == message.message);
        Orvanta::Require(object.at("level").get<std::uint32_t>() == message.level);
        Orvanta::Require(object.at("falseAlarm").get<bool>() == message.falseAlarm);
        Orvanta::Require(object.at("positions").size() == message.positions.size());
        Orvanta::Require(object.value("cwe", 0U) == message.cwe);
        Orvanta::Require(object.value("sastId", "") == message.sastId);
    }
    return 0;
}
