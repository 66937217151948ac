#include "suppress/SuppressBase.h"

#include "report/Exceptions.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"
#include "suppress/SuppressBaseFilter.h"
#include "suppress/SuppressBaseOutput.h"
#include "unit/report/RandomMessages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace OrvlogConverter {
namespace {

using Orvanta::ErrorOf;
using Orvanta::TestFolder;

constexpr const char* Entry =
    R"({"FileName":"a.c","ErrorCode":"V501","Message":"m","CodePrev":1,"CodeCurrent":2,"CodeNext":4294967295})";

TEST(SuppressBase, IsOneSortedEntryALine) {
    const TestFolder folder;
    SuppressBase base;
    EXPECT_TRUE(base.Add({"b.c", "V1", "m", 1, 2, 3}));
    EXPECT_TRUE(base.Add({"a.c", "V2", "\"q\"\t\\", 1, 2, 3}));
    EXPECT_TRUE(base.Add({"a.c", "V2", "\"q\"\t\\", 1, 1, 3}));
    EXPECT_FALSE(base.Add({"b.c", "V1", "m", 1, 2, 3}));
    base.Write(folder / "base.json");
    const std::string text = folder.Read("base.json");
    const std::string start = R"({"FileName": "a.c", "ErrorCode": "V2", "Message": "\"q\"\t\\", "CodePrev": 1, )";
    EXPECT_EQ(text, "{\"version\": 2, \"warnings\": [\n" + start + "\"CodeCurrent\": 1, \"CodeNext\": 3},\n" + start +
                        "\"CodeCurrent\": 2, \"CodeNext\": 3},\n"
                        R"({"FileName": "b.c", "ErrorCode": "V1", "Message": "m", "CodePrev": 1, )"
                        "\"CodeCurrent\": 2, \"CodeNext\": 3}\n]}\n");
    SuppressBase::Read(folder / "base.json").Write(folder / "again.json");
    EXPECT_EQ(folder.Read("again.json"), text);
}

TEST(SuppressBase, ReadsWhatOthersWrite) {
    const TestFolder folder;
    const std::string text = R"({"more": {"warnings": [1, {"FileName": 2}]}, "warnings": [)" + std::string(Entry) +
                             "," + Entry +
                             R"(, {"CodeNext":3,"CodeCurrent":2,"CodePrev":1,"Message":"m","ErrorCode":"V2",)"
                             R"("FileName":"a.c","note":[{"FileName":"x"}]}], "also": [null, true, 1.5, -1]})";
    const SuppressBase base = SuppressBase::Read(folder.Write("base.json", text));
    EXPECT_EQ(base.Version(), 1U);
    EXPECT_TRUE(base.IsOutdated());
    EXPECT_EQ(base.Size(), 2U);
    EXPECT_TRUE(base.Contains({"a.c", "V501", "m", 1, 2, 4294967295U}));
    EXPECT_TRUE(base.Contains({"a.c", "V2", "m", 1, 2, 3}));
    const SuppressBase later = SuppressBase::Read(folder.Write("base.json", R"({"warnings":[],"version":7})"));
    EXPECT_EQ(later.Version(), 7U);
    EXPECT_FALSE(later.IsOutdated());
}

TEST(SuppressBase, KeepsTheMembersThatOthersAdded) {
    const TestFolder folder;
    const std::string reason = R"("why": [{"by": "x", "also": [[], {}, null, true, -1.5]}, "\u00e9\""])";
    const std::string entry = std::string(Entry).insert(1, reason + ", ");
    folder.Write("base.json",
                 R"({"owner": {"team": ["a", {"b": 1}]}, "version": 2, "warnings": [)" + entry + "], " + reason + "}");
    SuppressBase base = SuppressBase::Read(folder / "base.json");
    EXPECT_FALSE(base.Add({"a.c", "V501", "m", 1, 2, 4294967295U})) << "it is the entry that is there";
    EXPECT_TRUE(base.Add({"b.c", "V1", "m", 1, 2, 3}));
    base.Write(folder / "base.json");
    const nlohmann::json expected = nlohmann::json::parse(
        R"({"owner": {"team": ["a", {"b": 1}]}, "version": 2, "warnings": [)" + entry +
        R"(, {"FileName":"b.c","ErrorCode":"V1","Message":"m","CodePrev":1,"CodeCurrent":2,"CodeNext":3}], )" + reason +
        "}");
    EXPECT_EQ(nlohmann::json::parse(folder.Read("base.json")), expected);
    const std::string deep = folder.Write("deep.json", "{\"x\":" + std::string(1'000'000, '['));
    EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(deep); }), deep + ": nested more than 1000 deep");
    const std::string wide = folder.Write("wide.json", std::string("\xFF\xFE{\0", 4));
    EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(wide); }), wide + ": the text is UTF-16, expected UTF-8");
}

struct FaultCase {
    std::string_view text;
    std::string_view fault; // behind the path
};

TEST(SuppressBase, NamesThePlaceOfAFault) {
    const FaultCase cases[] = {
        {R"({})", ": field warnings is not found"},
        {R"([])", ": type must be object, but is array"},
        {R"(7)", ": type must be object, but is number"},
        {R"({"warnings":{}})", ": type must be array, but is object"},
        {R"({"warnings":"x"})", ": type must be array, but is string"},
        {R"({"version":"2","warnings":[]})", ": type must be number, but is string"},
        {R"({"version":-2,"warnings":[]})", ": number out of range: -2"},
        {R"({"version":4294967296,"warnings":[]})", ": number out of range: 4294967296"},
        {R"({"warnings":[7]})", ", entry 1: type must be object, but is number"},
        {R"({"warnings":[[]]})", ", entry 1: type must be object, but is array"},
        {R"({"warnings":[{}]})", ", entry 1: field FileName is not found"},
        {R"({"warnings":[{"FileName":1}]})", ", entry 1: type must be string, but is number"},
        {R"({"warnings":[{"FileName":{}}]})", ", entry 1: type must be string, but is object"},
        {R"({"warnings":[{"CodePrev":"1"}]})", ", entry 1: type must be number, but is string"},
        {R"({"warnings":[{"CodePrev":1.5}]})", ", entry 1: number out of range: 1.5"},
        {R"({"warnings":[{"CodePrev":-1}]})", ", entry 1: number out of range: -1"},
    };
    const TestFolder folder;
    for (const FaultCase& row : cases) {
        const std::string path = folder.Write("base.json", row.text);
        EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(path); }), path + std::string(row.fault));
    }
    for (const char* const key : {"FileName", "ErrorCode", "Message", "CodePrev", "CodeCurrent", "CodeNext"}) {
        auto entry = nlohmann::json::parse(Entry);
        entry.erase(key);
        const std::string path =
            folder.Write("base.json", "{\"warnings\":[" + std::string(Entry) + "," + entry.dump() + "]}");
        EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(path); }), path + ", entry 2: field " + key + " is not found");
    }
    const std::string cut = folder.Write("base.json", "{\"warnings\":[{\"FileName\":");
    EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(cut); }).find(cut + ": [json.exception.parse_error.101]"), 0U);
    EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(folder / "none"); }), "Couldn't open file " + (folder / "none"));
    EXPECT_EQ(ErrorOf([&] { (void)SuppressBase::Read(folder.Path()); }), folder.Path() + " is a directory");
    EXPECT_EQ(ErrorOf([&] { SuppressBase().Write(folder / "none/base.json"); }),
              "File doesn't exists: " + (folder / "none/base.json"));
}

TEST(SuppressBase, SurvivesDamage) {
    const TestFolder folder;
    RandomMessages random(11);
    SuppressBase base;
    for (int count = 0; count < 5; ++count) {
        base.Add(MakeSuppressEntry(random.Message(), 2));
    }
    base.Write(folder / "base.json");
    const std::string whole = folder.Read("base.json");
    for (int round = 0; round < 500; ++round) {
        std::string text = whole;
        for (std::size_t count = random.Below(3) + 1; count > 0; --count) {
            const std::size_t at = random.Below(text.size());
            text = random.Below(2) == 0 ? text.replace(at, 1, 1, static_cast<char>(random.Below(256)))
                                        : text.erase(at, random.Below(30));
        }
        const std::string path = folder.Write("base.json", text);
        const std::string fault = ErrorOf([&] { (void)SuppressBase::Read(path); });
        EXPECT_TRUE(fault == "no error" || fault.starts_with(path)) << fault;
    }
}

/// Keeps what reaches it.
class Recorder : public IOutput {
public:
    bool Write(const ReportMessage& message) override {
        messages.push_back(message);
        return true;
    }

    std::vector<ReportMessage> messages;
};

TEST(SuppressBase, HidesWhatItHoldsInEveryForm) {
    const TestFolder folder;
    RandomMessages random(12);
    std::vector<ReportMessage> messages;
    SuppressBaseOutput output(folder / "base.json", SuppressBase());
    output.Begin();
    for (int count = 0; count < 500; ++count) {
        ReportMessage message = random.Message();
        message.message = random.AnyText();
        message.positions.front().currLine = random.AnyText();
        message.positions.front().file = "/p/" + random.AnyText() + ".c";
        messages.push_back(message);
        output.Write(message);
    }
    output.End();
    const SuppressBase base = SuppressBase::Read(folder / "base.json"); // texts went through JSON
    EXPECT_EQ(base.Size(), output.AddedCount());
    Recorder recorder;
    SuppressBaseFilter filter(&recorder, &base);
    filter.Begin();
    for (const ReportMessage& message : messages) {
        EXPECT_FALSE(filter.Write(message));
    }
    EXPECT_EQ(recorder.messages.size(), 0U);
    EXPECT_EQ(filter.HiddenCount(), messages.size());
    messages[0].message += " more";
    EXPECT_TRUE(filter.Write(messages[0]));
    EXPECT_TRUE(SuppressBaseFilter(&recorder, nullptr).Write(messages[1]));
}

TEST(SuppressBaseOutput, AddsEveryMessageOnce) {
    const TestFolder folder;
    const std::string path = folder / "base.json";
    const ReportMessage finding = {"V501", "size 1", "", {}, 0, 1, false};
    const ReportMessage same = {"V501", "size 22", "", {}, 0, 2, false};
    const ReportMessage link = {"Help:", "see", "", {}, 0, 0, false};
    for (const bool isFirst : {true, false}) {
        SuppressBaseOutput output(path, isFirst ? SuppressBase() : SuppressBase::Read(path));
        output.Begin();
        EXPECT_EQ(output.Write(finding), isFirst);
        EXPECT_FALSE(output.Write(same));
        EXPECT_FALSE(output.Write(link));
        output.End();
        EXPECT_EQ(output.AddedCount(), isFirst ? 1U : 0U);
    }
    EXPECT_EQ(SuppressBase::Read(path).Size(), 1U);
}

TEST(SuppressBaseOutput, LeavesAnUnchangedBaseAsItIs) {
    const TestFolder folder;
    const std::string text = R"({ "version":2, "warnings":[] } )";
    const std::string path = folder.Write("base.json", text);
    SuppressBaseOutput output(path, SuppressBase::Read(path));
    output.Begin();
    output.End();
    EXPECT_EQ(folder.Read("base.json"), text);
}

TEST(OutdatedBase, IsNotAddedToAndIsToldOf) {
    const TestFolder folder;
    const std::string text = R"({"warnings":[]})";
    const SuppressBase old = SuppressBase::Read(folder.Write("base.json", text));
    SuppressBaseOutput output(folder / "base.json", old);
    EXPECT_EQ(ErrorOf([&] { output.Begin(); }), OutdatedBaseText);
    EXPECT_EQ(folder.Read("base.json"), text);

    Recorder recorder;
    SuppressBaseFilter filter(&recorder, &old);
    filter.Begin();
    const ReportMessage notice = {"V014", OutdatedBaseText, "", {{" ", 0, "", "", "", 0, 0, 0}}, 0, 1, false};
    EXPECT_EQ(recorder.messages, std::vector(1, notice));
    const SuppressBase current;
    SuppressBaseFilter(&recorder, &current).Begin();
    EXPECT_EQ(recorder.messages.size(), 1U);
}

} // namespace
} // namespace OrvlogConverter
