#include "report/JsonMessage.h"

#include "report/Exceptions.h"
#include "report/JsonMessageScanner.h"
#include "report/JsonText.h"
#include "report/Utf8.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace OrvlogConverter {

namespace {

std::uint32_t NumberOf(const nlohmann::json& value) {
    const auto number = value.get<double>(); // holds every number of the record exactly
    if (!(number >= 0 && number <= std::numeric_limits<std::uint32_t>::max())) {
        throw ParseException("number out of range: " + value.dump());
    }
    return static_cast<std::uint32_t>(number);
}

void ReadIfPresent(const nlohmann::json& object, const char* key, std::string& target) {
    if (const auto found = object.find(key); found != object.end()) {
        found->get_to(target);
    }
}

void AppendPositions(std::string& json, const std::vector<MessagePosition>& positions) {
    json += '[';
    for (const MessagePosition& position : positions) {
        json += &position == &positions.front() ? "{\"file\":" : ",{\"file\":";
        AppendJsonString(json, position.file);
        json += ",\"line\":";
        json += std::to_string(position.line);
        json += '}';
    }
    json += ']';
}

} // namespace

// Found by the JSON library by its argument's namespace.
static void from_json(const nlohmann::json& object, MessagePosition& position) {
    object.at("file").get_to(position.file);
    position.line = NumberOf(object.at("line"));
}

static ReportMessage ReadAnyJsonMessage(std::string_view text) {
    const auto isKept = [](int depth, nlohmann::json::parse_event_t /*event*/, const nlohmann::json& /*value*/) {
        if (depth > DeepestJson) {
            throw ParseException("nested more than " + std::to_string(DeepestJson) + " deep");
        }
        return true;
    };
    const nlohmann::json object = nlohmann::json::parse(text, isKept);
    ReportMessage message;
    object.at("falseAlarm").get_to(message.falseAlarm);
    message.level = NumberOf(object.at("level"));
    object.at("code").get_to(message.code);
    object.at("message").get_to(message.message);
    object.at("positions").get_to(message.positions);
    if (const auto cwe = object.find("cwe"); cwe != object.end()) {
        message.cwe = NumberOf(*cwe);
    }
    ReadIfPresent(object, "sastId", message.sastId);
    MessagePosition nowhere; // a message without positions has no place for its line texts
    MessagePosition& first = message.positions.empty() ? nowhere : message.positions.front();
    ReadIfPresent(object, "prevLine", first.prevLine);
    ReadIfPresent(object, "currLine", first.currLine);
    ReadIfPresent(object, "nextLine", first.nextLine);
    return message;
}

ReportMessage ReadJsonMessage(std::string_view text) {
    ReportMessage message;
    if (JsonMessageScanner().Scan(text, message)) {
        return message;
    }
    if (IsValidUtf8(text)) {
        return ReadAnyJsonMessage(text);
    }
    std::string valid;
    AppendValidUtf8(valid, text);
    return ReadAnyJsonMessage(valid);
}

void AppendJsonMessage(std::string& text, const ReportMessage& message) {
    const MessagePosition& first = FirstPosition(message);
    text += message.falseAlarm ? "{\"falseAlarm\":true,\"level\":" : "{\"falseAlarm\":false,\"level\":";
    text += std::to_string(message.level);
    text += ",\"code\":";
    AppendJsonString(text, message.code);
    text += ",\"message\":";
    AppendJsonString(text, message.message);
    text += ",\"positions\":";
    AppendPositions(text, message.positions);
    text += ",\"cwe\":";
    text += std::to_string(message.cwe);
    text += ",\"sastId\":";
    AppendJsonString(text, message.sastId);
    text += ",\"prevLine\":";
    AppendJsonString(text, first.prevLine);
    text += ",\"currLine\":";
    AppendJsonString(text, first.currLine);
    text += ",\"nextLine\":";
    AppendJsonString(text, first.nextLine);
    text += '}';
}

} // namespace OrvlogConverter
