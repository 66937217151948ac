#include "report/JsonMessage.h"

#include "support/ErrorOf.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace OrvlogConverter {
namespace {

std::string Written(const ReportMessage& message) {
    std::string line;
    AppendJsonMessage(line, message);
    return line;
}

// The slow plain way to the same text.
std::string WrittenByLibrary(const ReportMessage& message) {
    const MessagePosition first = message.positions.empty() ? MessagePosition() : message.positions.front();
    nlohmann::ordered_json object;
    object["falseAlarm"] = message.falseAlarm;
    object["level"] = message.level;
    object["code"] = message.code;
    object["message"] = message.message;
    object["positions"] = nlohmann::ordered_json::array();
    for (const MessagePosition& position : message.positions) {
        object["positions"].push_back({{"file", position.file}, {"line", position.line}});
    }
    object["cwe"] = message.cwe;
    object["sastId"] = message.sastId;
    object["prevLine"] = first.prevLine;
    object["currLine"] = first.currLine;
    object["nextLine"] = first.nextLine;
    return object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

TEST(JsonMessage, IsOneObjectWithFixedKeys) {
    const ReportMessage message = {
        "V501", "a \"b\"", "X", {{"a.c", 12, "p", "c\t", "n", 7, 8, 9}, {"b.h", 4, "x", "y", "z", 0, 0, 0}},
        476,    2,         true};
    EXPECT_EQ(Written(message), R"({"falseAlarm":true,"level":2,"code":"V501","message":"a \"b\"","positions":[)"
                                R"({"file":"a.c","line":12},{"file":"b.h","line":4}],"cwe":476,"sastId":"X",)"
                                R"("prevLine":"p","currLine":"c\t","nextLine":"n"})");
    EXPECT_EQ(Written({}), WrittenByLibrary({}));
}

TEST(JsonMessage, EscapesAndReplacesAsTheLibraryDoes) {
    std::vector<std::string> texts = {"C:\\a b\\c.c", "\"\\\t\n\r\b\f", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                                      "x\xC3",        "\xC3(",          "\xE2\x82x\xFF",
                                      "\xC0\xAF",     "\xED\xA0\x80",   "\\\xE9\""};
    for (int byte = 0; byte < 256; ++byte) {
        texts.push_back("a" + std::string(1, static_cast<char>(byte)) + "b");
        texts.push_back("\"" + std::string(1, static_cast<char>(byte)));
    }
    for (const std::string& text : texts) {
        const ReportMessage message = {text, text, text, {{text, 1, text, text, text, 0, 0, 0}}, 0, 1, false};
        const std::string line = Written(message);
        EXPECT_EQ(line, WrittenByLibrary(message));
        EXPECT_TRUE(nlohmann::json::accept(line));
        EXPECT_EQ(line.find('\n'), std::string::npos);
    }
}

TEST(JsonMessage, NeedsOnlyFiveKeysToBeRead) {
    const ReportMessage least = {"V1", "m", "", {}, 0, 1, false};
    EXPECT_EQ(ReadJsonMessage(R"({"positions":[],"message":"m","code":"V1","level":1,"falseAlarm":false,"more":[1]})"),
              least);
    const ReportMessage most = {"V1", "m", "X", {{"a.c", 4294967295U, "p", "c", "n", 0, 0, 0}}, 5, 1, true};
    EXPECT_EQ(ReadJsonMessage(R"({"falseAlarm":true,"level":1,"code":"V1","message":"m",)"
                              R"("positions":[{"line":4294967295,"file":"a.c"}],"cwe":5,"sastId":"X",)"
                              R"("prevLine":"p","currLine":"c","nextLine":"n"})"),
              most);
}

struct JsonFaultCase {
    const char* key;
    const char* value; // null: the key is missing
    std::string_view error;
};

TEST(JsonMessage, IsRejectedWithItsFault) {
    const JsonFaultCase cases[] = {
        {"falseAlarm", nullptr, "[json.exception.out_of_range.403] key 'falseAlarm' not found"},
        {"level", nullptr, "[json.exception.out_of_range.403] key 'level' not found"},
        {"code", nullptr, "[json.exception.out_of_range.403] key 'code' not found"},
        {"message", nullptr, "[json.exception.out_of_range.403] key 'message' not found"},
        {"positions", nullptr, "[json.exception.out_of_range.403] key 'positions' not found"},
        {"positions", "{}", "[json.exception.type_error.302] type must be array, but is object"},
        {"positions", "null", "[json.exception.type_error.302] type must be array, but is null"},
        {"positions", R"([{"line":1}])", "[json.exception.out_of_range.403] key 'file' not found"},
        {"falseAlarm", "1", "[json.exception.type_error.302] type must be boolean, but is number"},
        {"level", "\"1\"", "[json.exception.type_error.302] type must be number, but is string"},
        {"level", "-1", "number out of range: -1"},
        {"cwe", "4294967296", "number out of range: 4294967296"},
        {"sastId", "null", "[json.exception.type_error.302] type must be string, but is null"},
        {"code", "7", "[json.exception.type_error.302] type must be string, but is number"},
    };
    for (const JsonFaultCase& row : cases) {
        auto object = nlohmann::json::parse(WrittenByLibrary({}));
        object.erase(row.key);
        if (row.value != nullptr) {
            object[row.key] = nlohmann::json::parse(row.value);
        }
        EXPECT_EQ(Orvanta::ErrorOf([&] { static_cast<void>(ReadJsonMessage(object.dump())); }), row.error) << object;
    }
    EXPECT_THROW(static_cast<void>(ReadJsonMessage("{\"level\":}")), nlohmann::json::parse_error);
}

} // namespace
} // namespace OrvlogConverter
