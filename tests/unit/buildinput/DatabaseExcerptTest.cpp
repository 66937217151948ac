#include "buildinput/DatabaseExcerpt.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string>

namespace Orvanta {

namespace {

// "NUMBER:LINE" of each entry that holds an "x"; "no array" when it is none.
std::string Picked(const std::string& text) {
    std::istringstream stream(text);
    const auto entries =
        PickEntries(stream, [](std::string_view entry) { return entry.find('x') != std::string_view::npos; });
    std::string picked = entries ? "" : "no array";
    for (const DatabaseEntry& entry : entries.value_or(std::vector<DatabaseEntry>())) {
        picked += std::to_string(entry.number) + ":" + std::to_string(entry.line) + " ";
    }
    return picked;
}

TEST(DatabaseExcerpt, CutsAtBracketsThatAreNoText) {
    const struct {
        const char* text;
        const char* picked;
    } rows[] = {
        {"[]", ""},
        {"\xEF\xBB\xBF[\n{\"a\": \"x\"},\n{\"a\": 1},\n\n{\"b\": [\"x\", {}]}\n]\n", "1:2 3:5 "},
        {R"([{"a": "}]\"x"}, {"a": "\\"}, {"x": "{["}])", "1:1 3:1 "},
        {"{\"a\": 1}", "no array"},
        {"", "no array"},
        {"[{\"a\": 1}", "no array"},
        {"[\"x\"]", "no array"},
        {"[{}] x", "no array"},
        {"x", "no array"},
    };

    for (const auto& row : rows) {
        EXPECT_EQ(Picked(row.text), row.picked) << row.text;
    }
}

TEST(DatabaseExcerpt, GivesWhatAParserOfTheWholeReads) {
    nlohmann::json database = nlohmann::json::array();
    for (int number = 0; number < 9000; ++number) { // several blocks, which end anywhere
        database.push_back({{"command", std::string(static_cast<std::size_t>(number % 7), '\\') + "\"}{ äx" +
                                            std::string(static_cast<std::size_t>(number % 400), 'a')}});
    }
    std::istringstream stream(database.dump(1));
    const auto entries = PickEntries(stream, [](std::string_view) { return true; });
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(entries->size(), database.size());
    for (std::size_t place = 0; place < database.size(); ++place) {
        ASSERT_EQ(nlohmann::json::parse((*entries)[place].text), database[place]);
        ASSERT_EQ((*entries)[place].line, 2 + place * 3);
    }
}

} // namespace

} // namespace Orvanta
