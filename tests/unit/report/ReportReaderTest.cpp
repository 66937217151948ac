#include "report/ReportReader.h"

#include "report/Exceptions.h"
#include "report/FinishedReport.h"
#include "report/JsonMessage.h"
#include "report/MessageLine.h"
#include "report/StandardInput.h"
#include "report/Utf8.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"
#include "unit/report/RandomMessages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <iterator>
#include <sstream>

namespace OrvlogConverter {
namespace {

using Orvanta::ErrorOf;
using Orvanta::TestFolder;

struct ReadReport {
    std::vector<ReportMessage> messages;
    std::string texts;
    std::string members;
};

ReadReport Read(const std::string& path) {
    ReadReport report;
    ReportReader(path).Read({[&](const ReportMessage& message, std::string_view text) {
                                 report.messages.push_back(message);
                                 report.texts += text;
                             },
                             [&](const std::string& key, const std::string& value) {
                                 report.members += key + "=" + value + ";";
                             }});
    return report;
}

std::string LineOf(const ReportMessage& message, LineFormat format) {
    std::string line;
    AppendMessageLine(line, message, format);
    return line;
}

void Write(const std::string& path, ReportForm form, const std::vector<ReportMessage>& messages) {
    FinishedReport report(path, form);
    report.Begin();
    for (const ReportMessage& message : messages) {
        report.Write(message);
    }
    report.End();
}

TEST(ReportReader, ReadsBackWhatWasWrittenInEveryForm) {
    const TestFolder folder;
    RandomMessages random(1);
    std::vector<ReportMessage> messages;
    for (int count = 0; count < 2000; ++count) {
        messages.push_back(random.Message());
    }
    for (const auto& [name, form] :
         {std::pair("r.json", ReportForm::JsonDocument), std::pair("r.jsonl", ReportForm::JsonLines),
          std::pair("r.log", ReportForm::RawLines)}) {
        Write(folder / name, form, messages);
        EXPECT_EQ(LookAtReport(folder / name).form, form);
        const ReadReport report = Read(folder / name);
        ASSERT_EQ(report.messages.size(), messages.size()) << name;
        for (std::size_t index = 0; index < messages.size(); ++index) {
            ASSERT_EQ(report.messages[index], messages[index])
                << name << ", " << LineOf(messages[index], LineFormat::Raw);
        }
    }
}

TEST(ReportReader, KeepsInvalidTextReadable) {
    RandomMessages random(2);
    for (int count = 0; count < 2000; ++count) {
        ReportMessage message = random.Message();
        const std::string text = random.AnyText();
        message.message = text;
        message.positions.front().currLine = text;
        const std::string json = LineOf(message, LineFormat::Json);
        ASSERT_TRUE(nlohmann::json::accept(json)) << json;
        std::string valid;
        AppendValidUtf8(valid, text);
        ASSERT_TRUE(IsValidUtf8(valid));
        EXPECT_EQ(ReadJsonMessage(json).message, valid);
        EXPECT_EQ(LineOf(ReadMessageLine(LineOf(message, LineFormat::Raw)), LineFormat::Raw),
                  LineOf(message, LineFormat::Raw));
    }
    const std::string broken = R"({"falseAlarm":false,"level":1,"code":"V1","message":")"
                               "\xFF\xE2\x82"
                               R"(","positions":[]})";
    EXPECT_EQ(ReadMessageLine(broken).message, "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ReportReader, TellsTheFormsOfLinesApart) {
    const TestFolder folder;
    const ReportMessage message = {"V1", "m", "", {{"a.c", 3, "", "", "", 0, 0, 0}}, 0, 2, false};
    const std::string raw = LineOf(message, LineFormat::Raw);
    const std::string json = LineOf(message, LineFormat::Json);
    const std::string text = "\xEF\xBB\xBF" + raw + "\r\n\n" + json + "\nx.c:3:7: warning: text\r\n" + json;
    const ReadReport report = Read(folder.Write("r.log", text));
    ASSERT_EQ(report.messages.size(), 4U);
    EXPECT_EQ(report.messages[0], message);
    EXPECT_EQ(report.messages[1], message);
    EXPECT_EQ(report.messages[2],
              ReportMessage({"External", "text", "", {{"x.c", 3, "", "", "", 0, 0, 0}}, 0, 2, false}));
    EXPECT_EQ(report.messages[3], message);
    EXPECT_EQ(report.texts, raw + "\r\n" + json + "\nx.c:3:7: warning: text\r\n" + json);
}

TEST(ReportReader, ReadsLinesLongerThanItsBlocks) {
    const TestFolder folder;
    ReportMessage message = {"V1", std::string(3000000, 'x'), "", {}, 0, 2, false};
    const std::string line = LineOf(message, LineFormat::Json);
    EXPECT_EQ(Read(folder.Write("r", line + "\n" + line)).messages, std::vector(2, message));
    message.message = std::string(65535, 'x') + "\xE2\x82\xAC\xF0\x9F\x98\x80\xFF"; // across the blocks of a document
    const std::string document = "{\"warnings\":[" + LineOf(message, LineFormat::Json) + "]}";
    message.message.replace(message.message.size() - 1, 1, "\xEF\xBF\xBD");
    for (std::size_t shift = 0; shift < 8; ++shift) {
        EXPECT_EQ(Read(folder.Write("r.json", std::string(shift, ' ') + document)).messages, std::vector(1, message));
    }
}

TEST(ReportReader, HandsOnTheOtherMembersOfADocument) {
    const TestFolder folder;
    const std::string path = folder.Write("r.json", R"({"version": 1, "a": {"warnings": [1]}, "warnings": [
{"falseAlarm":false,"level":1,"code":"V1","message":"m","positions":[],"more":{"x":[1,2]}}], "b": [[{}], null]})");
    const ReadReport report = Read(path);
    EXPECT_EQ(report.messages, std::vector({ReportMessage{"V1", "m", "", {}, 0, 1, false}}));
    EXPECT_EQ(report.members, R"(version=1;a={"warnings":[1]};b=[[{}],null];)");
    EXPECT_NE(report.texts.find(R"("more":{"x":[1,2]})"), std::string::npos);
}

struct FaultCase {
    const char* name;
    std::string_view text;
    std::string fault; // behind the path
};

TEST(ReportReader, NamesThePlaceOfAFault) {
    const std::string good = LineOf({}, LineFormat::Json);
    const std::string two = good + "\n\nnonsense\n";
    const std::string bad = good + "\nZelm64-EM<#~>full<#~>x<#~>a.c<#~>error<#~>V1<#~>m<#~>false<#~>1<#~><#~><#~><#~>";
    const std::string entry = "{\"warnings\":[" + good + "," + good + ",{\"falseAlarm\":true}]}";
    const std::string key = "[json.exception.out_of_range.403] key ";
    const FaultCase cases[] = {
        {"r.log", two, ", line 3: error parsing old format message"},
        {"r.log", bad, ", line 2: invalid stoi argument"},
        {"r.log", R"({"level":1})", ", line 1: " + key + "'falseAlarm' not found"},
        {"r.log", "a.c:99999999999:1: error: x", ", line 1: stoi argument out of range"},
        {"r.json", entry, ", entry 3: " + key + "'level' not found"},
        {"r.json", "{}", ": field warnings is not found"},
        {"r.json", R"({"other":[{}]})", ": field warnings is not found"},
        {"r.json", R"({"warnings":{}})", ": type must be array, but is object"},
        {"r.json", R"({"warnings":null})", ": type must be array, but is null"},
        {"r.json", "[]", ": type must be object, but is array"},
    };
    const TestFolder folder;
    for (const FaultCase& row : cases) {
        const std::string path = folder.Write(row.name, row.text);
        EXPECT_EQ(ErrorOf([&] { Read(path); }), path + row.fault);
    }
    const std::string number = folder.Write("r.json", R"({"warnings":[7]})");
    EXPECT_EQ(ErrorOf([&] { Read(number); }),
              number + ", entry 1: [json.exception.type_error.304] cannot use at() with number");
    const std::string cut = folder.Write("r.json", "{\"warnings\":[");
    EXPECT_EQ(ErrorOf([&] { Read(cut); }).find(cut + ": [json.exception.parse_error.101]"), 0U);
    EXPECT_EQ(ErrorOf([&] { Read(folder / "none.log"); }), "Couldn't open file " + (folder / "none.log"));
    EXPECT_EQ(ErrorOf([&] { Read(folder.Path()); }), folder.Path() + " is a directory");
    EXPECT_EQ(ErrorOf([&] { Read(""); }), "Empty filepath");
}

TEST(ReportReader, RefusesWhatIsNestedWithoutEnd) {
    const TestFolder folder;
    const std::string deep = std::string(1'000'000, '[') + std::string(1'000'000, ']');
    const std::string fault = "nested more than 1000 deep";
    const std::string line = folder.Write("r.log", "{\"x\":" + deep + "}\n");
    EXPECT_EQ(ErrorOf([&] { Read(line); }), line + ", line 1: " + fault);
    for (const std::string& text : {deep, "{\"x\":" + deep + "}", std::string(1'000'000, '[')}) {
        const std::string document = folder.Write("r.json", text);
        EXPECT_EQ(ErrorOf([&] { Read(document); }), document + ": " + fault);
    }
    const std::string entry = folder.Write("r.json", "{\"warnings\":[{\"x\":" + deep + "}]}");
    EXPECT_EQ(ErrorOf([&] { Read(entry); }), entry + ", entry 1: " + fault);
}

TEST(ReportReader, TellsUtf16AndKnowsDocumentsByTheirNames) {
    const TestFolder folder;
    using namespace std::string_literals;
    for (const char* const name : {"r.json", "r.log"}) {
        for (const std::string& start : {"\xFF\xFE{\0"s, "\xFE\xFF\0{"s}) {
            const std::string path = folder.Write(name, start);
            EXPECT_EQ(ErrorOf([&] { Read(path); }), path + ": the text is UTF-16, expected UTF-8");
        }
        const std::string other = folder.Write(name, "\xFF");
        EXPECT_EQ(ErrorOf([&] { Read(other); }).find("UTF-16"), std::string::npos);
    }
    EXPECT_TRUE(IsJsonDocumentName("a/.json"));
    EXPECT_FALSE(IsJsonDocumentName("a.json/r"));
    EXPECT_EQ(IsJsonDocumentName("R.JSON"), Orvanta::HostPathRules() == Orvanta::PathRules::Windows);
}

TEST(ReportReader, ReadsTheGreatestNumbersOfTheRecordInEveryForm) {
    const std::uint32_t most = 4294967295U;
    const ReportMessage message = {"V1", "m", "", {{"a.c", most, "", "", "", 0, 0, 0}}, most, most, false};
    const TestFolder folder;
    for (const auto& [name, form] :
         {std::pair("r.json", ReportForm::JsonDocument), std::pair("r.log", ReportForm::RawLines)}) {
        Write(folder / name, form, {message});
        EXPECT_EQ(Read(folder / name).messages, std::vector(1, message)) << name;
    }
}

TEST(Utf8, IsToldFromWhatOnlyLooksLikeIt) {
    for (const std::string_view text :
         {"", "\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(IsValidUtf8(text)) << text;
    }
    // Overlong, a surrogate, above the last character, no lead byte, cut short.
    for (const std::string_view text : {"\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
                                        "\xF4\x90\x80\x80", "\x80", "\xFF", "\xC3", "\xE1\x80", "\xC3("}) {
        EXPECT_FALSE(IsValidUtf8(text)) << text;
    }
}

// Read in blocks, each text is what it is as a whole, wherever a block cuts it.
TEST(Utf8, IsReadAcrossTheBordersOfBlocks) {
    for (const std::string_view piece : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xF0\x9F\x98(", "\xE2\x82"}) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            std::string text(shift, 'a');
            while (text.size() < std::size_t{200} << 10U) {
                text += piece;
            }
            std::istringstream bytes(text);
            Utf8Buffer buffer(bytes);
            std::string read(std::istreambuf_iterator<char>(&buffer), {});
            std::string expected;
            AppendValidUtf8(expected, text);
            EXPECT_TRUE(read == expected) << testing::PrintToString(piece) << " behind " << shift;
        }
    }
}

// A reader either takes a damaged report or names the fault; nothing else may come of it.
TEST(ReportReader, SurvivesDamage) {
    const TestFolder folder;
    RandomMessages random(3);
    for (int round = 0; round < 300; ++round) {
        const char* const name = round % 3 == 0 ? "r.json" : "r.log";
        const ReportForm form = round % 3 == 0   ? ReportForm::JsonDocument
                                : round % 3 == 1 ? ReportForm::JsonLines
                                                 : ReportForm::RawLines;
        Write(folder / name, form, {random.Message(), random.Message(), random.Message()});
        std::string text = folder.Read(name);
        for (std::size_t count = random.Below(4) + 1; count > 0; --count) {
            const std::size_t at = random.Below(text.size());
            switch (random.Below(3)) {
            case 0:
                text[at] = static_cast<char>(random.Below(256));
                break;
            case 1:
                text.erase(at, random.Below(20));
                break;
            default:
                text.insert(at, text.substr(random.Below(text.size()), random.Below(20)));
                break;
            }
        }
        const std::string path = folder.Write(name, text);
        try {
            Read(path);
        } catch (const ParseException& error) {
            EXPECT_EQ(std::string(error.what()).find(path), 0U) << error.what();
        }
    }
}

// The scanner is a quicker way to what the library reads.
TEST(JsonMessageScanner, AgreesWithTheLibrary) {
    RandomMessages random(4);
    JsonMessageScanner scanner;
    ReportMessage scanned;
    for (int count = 0; count < 3000; ++count) {
        std::string line = LineOf(random.Message(), LineFormat::Json);
        if (count % 3 == 0) { // as other writers set it
            line = nlohmann::json::parse(line).dump(static_cast<int>(random.Below(3)), ' ');
        }
        ASSERT_TRUE(count % 3 == 1 || line.find("\\u") != std::string::npos || scanner.Scan(line, scanned)) << line;
        if (count % 3 == 1) {
            line[random.Below(line.size())] = static_cast<char>(random.Below(256));
        }
        if (!scanner.Scan(line, scanned)) {
            continue;
        }
        const nlohmann::json object = nlohmann::json::parse(line);
        EXPECT_EQ(scanned.code, object.at("code").get<std::string>());
        EXPECT_EQ(scanned.message, object.at("message").get<std::string>());
        EXPECT_EQ(scanned.falseAlarm, object.at("falseAlarm").get<bool>());
        EXPECT_EQ(scanned.level, object.at("level").get<std::uint32_t>());
        EXPECT_EQ(scanned.cwe, object.value("cwe", 0U));
        EXPECT_EQ(scanned.sastId, object.value("sastId", ""));
        ASSERT_EQ(scanned.positions.size(), object.at("positions").size());
        for (std::size_t index = 0; index < scanned.positions.size(); ++index) {
            EXPECT_EQ(scanned.positions[index].file, object.at("positions")[index].at("file").get<std::string>());
            EXPECT_EQ(scanned.positions[index].line, object.at("positions")[index].at("line").get<std::uint32_t>());
        }
        if (!scanned.positions.empty()) {
            EXPECT_EQ(scanned.positions.front().prevLine, object.value("prevLine", ""));
            EXPECT_EQ(scanned.positions.front().currLine, object.value("currLine", ""));
            EXPECT_EQ(scanned.positions.front().nextLine, object.value("nextLine", ""));
        }
    }
}

TEST(JsonMessageScanner, LeavesWhatItDoesNotKnowToTheLibrary) {
    const std::string_view cases[] = {
        "",
        "{}",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"m"})",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"m","positions":[]} x)",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"m","positions":[],})",
        R"({"falseAlarm":true,"level":01,"code":"V1","message":"m","positions":[]})",
        R"({"falseAlarm":true,"level":1.5,"code":"V1","message":"m","positions":[]})",
        R"({"falseAlarm":true,"level":-1,"code":"V1","message":"m","positions":[]})",
        R"({"falseAlarm":true,"level":4294967296,"code":"V1","message":"m","positions":[]})",
        R"({"falseAlarm":1,"level":1,"code":"V1","message":"m","positions":[]})",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"\u0041","positions":[]})",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"\x","positions":[]})",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"m","positions":[],"other":1})",
        R"({"falseAlarm":true,"level":1,"level":2,"code":"V1","message":"m","positions":[]})",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"m","positions":[{"file":"a"}]})",
        R"({"falseAlarm":true,"level":1,"code":"V1","message":"m","positions":[{"file":"a","line":1,"x":2}]})",
        "{\"falseAlarm\":true,\"level\":1,\"code\":\"V1\",\"message\":\"\xFF\",\"positions\":[]}",
        "{\"falseAlarm\":true,\"level\":1,\"code\":\"V1\",\"message\":\"\t\",\"positions\":[]}",
    };
    JsonMessageScanner scanner;
    ReportMessage message;
    for (const std::string_view text : cases) {
        EXPECT_FALSE(scanner.Scan(text, message)) << text;
    }
}

TEST(StandardInput, IsKnownForADocumentByItsBeginning) {
    const std::pair<std::string_view, bool> cases[] = {
        {"{\"version\": 1, \"warnings\": [\n", true},
        {"\xEF\xBB\xBF {\"warnings\" :[]}", true},
        {"{\n\"version\": 1", true},
        {R"({"code":"V1","message":"\"warnings\":","positions":[{"warnings":1}]})", false},
        {R"({"code":"warnings"})", false},
        {R"({"code":"}\\","x":{}} {"warnings":[]})", false},
        {"a.c:1:1: error: {", false},
        {"{\"war", false},
        {"", false},
    };
    for (const auto& [text, isDocument] : cases) {
        EXPECT_EQ(LooksLikeDocument(text), isDocument) << text;
    }
}

TEST(FinishedReport, TakesItsPlaceOnlyWhenItIsWhole) {
    const TestFolder folder;
    const std::string path = folder.Write("r.log", "old");
    {
        FinishedReport report(path, ReportForm::RawLines);
        report.Write({});
    }
    EXPECT_EQ(folder.Read("r.log"), "old");
    FinishedReport document(folder / "r.json", ReportForm::JsonDocument);
    document.AddMember("version", "1");
    document.AddMember("a\"b", "[2]");
    document.Write({});
    document.AddMember("c", "{}");
    document.End();
    const auto read = nlohmann::ordered_json::parse(folder.Read("r.json"));
    EXPECT_EQ(read.size(), 4U);
    EXPECT_EQ(read.at("version"), 1);
    EXPECT_EQ(read.at("a\"b").dump(), "[2]");
    EXPECT_EQ(read.at("warnings").size(), 1U);
    EXPECT_EQ(read.begin().key(), "version");
    EXPECT_EQ(document.Count(), 1U);
}

} // namespace
} // namespace OrvlogConverter
