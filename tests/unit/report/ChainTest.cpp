#include "report/Exceptions.h"
#include "report/MessageFilter.h"
#include "report/MultipleOutput.h"
#include "report/SourceRootTransformer.h"
#include "support/Findings.h"

#include <gtest/gtest.h>

#include <set>

namespace OrvlogConverter {
namespace {

using FalseAlarms = MessageFilterSettings::FalseAlarms;

/// Notes what it is told.
class Recorder : public IOutput {
public:
    explicit Recorder(bool takes = true) : takes_(takes) {}

    void Begin() override { calls += "begin "; }

    bool Write(const ReportMessage& message) override {
        calls += message.code + " ";
        last = &message;
        files.push_back(message.positions.empty() ? "" : message.positions.back().file);
        return takes_;
    }

    void End() override { calls += "end "; }

    std::string calls;
    const ReportMessage* last = nullptr;
    std::vector<std::string> files;

private:
    bool takes_;
};

using Words = std::set<std::string, std::less<>>;

ReportMessage Marked(ReportMessage message) {
    message.falseAlarm = true;
    return message;
}

MessageFilterSettings Codes(Words codes, FalseAlarms falseAlarms = FalseAlarms::Drop) {
    MessageFilterSettings settings;
    settings.disabledCodes = std::move(codes);
    settings.falseAlarms = falseAlarms;
    return settings;
}

MessageFilterSettings LineWords(Words words) {
    MessageFilterSettings settings;
    settings.excludedWords = std::move(words);
    return settings;
}

MessageFilterSettings Analyzers(std::string_view specification) {
    MessageFilterSettings settings;
    settings.analyzers = ParseAnalyzerSpecification(specification);
    return settings;
}

MessageFilterSettings Paths(std::vector<std::string> fragments) {
    MessageFilterSettings settings;
    settings.excludedPaths = std::move(fragments);
    return settings;
}

bool Drops(const MessageFilterSettings& settings, const ReportMessage& message) {
    return !MessageFilter(nullptr, settings).Write(message);
}

TEST(MessageFilter, DropsByCodeMarkWordLevelAndPath) {
    const ReportMessage finding = Finding("V501");
    const ReportMessage nowhere = {"V501", "", "", {}, 0, 1, false};
    EXPECT_FALSE(Drops({}, finding));
    EXPECT_TRUE(Drops(Codes({"V501", "V502"}), finding));
    EXPECT_FALSE(Drops(Codes({"V502"}), finding));
    EXPECT_TRUE(Drops({}, Marked(finding)));
    EXPECT_FALSE(Drops(Codes({}, FalseAlarms::Keep), Marked(finding)));
    EXPECT_TRUE(Drops(Codes({"V501"}, FalseAlarms::Keep), Marked(finding)));
    EXPECT_TRUE(Drops(LineWords({"if"}), finding)) << "at the start of its line";
    EXPECT_TRUE(Drops(LineWords({"a_1"}), finding));
    EXPECT_FALSE(Drops(LineWords({"a", "b", "_1", "1"}), finding)) << "parts of words";
    EXPECT_TRUE(Drops(LineWords({"end"}), Finding("V501", 1, "a", "x.end")));
    EXPECT_FALSE(Drops(LineWords({""}), Finding("V501", 1, "a", "(-)")));
    EXPECT_FALSE(Drops(LineWords({"x"}), nowhere));
    EXPECT_TRUE(Drops(Analyzers("GA:2"), finding));
    EXPECT_FALSE(Drops(Analyzers("GA:2"), Finding("V501", 0)));
    EXPECT_TRUE(Drops(Paths({"none", "p/s"}), finding));
    EXPECT_FALSE(Drops(Paths({"none"}), finding));
    EXPECT_FALSE(Drops(Paths({"a"}), nowhere));
    EXPECT_TRUE(Drops(Paths({""}), finding)) << "in every path";
    EXPECT_TRUE(Drops(Paths({""}), nowhere));
}

TEST(Chain, PassesBeginAndEndThroughAndTellsWhatWasTaken) {
    auto first = std::make_unique<Recorder>(false);
    auto second = std::make_unique<Recorder>(true);
    const Recorder& refusing = *first;
    const Recorder& taking = *second;
    MultipleOutput outputs;
    EXPECT_FALSE(outputs.Write(Finding("V1")));
    outputs.Add(std::move(first));
    EXPECT_FALSE(outputs.Write(Finding("V2")));
    outputs.Add(std::move(second));
    EXPECT_THROW(outputs.Add(nullptr), ConfigException);

    MessageFilter filter(&outputs, {{"V4"}});
    SourceRootTransformer front(&filter, "/root");
    front.Begin();
    EXPECT_TRUE(front.Write(Finding("V3")));
    EXPECT_FALSE(front.Write(Finding("V4")));
    front.End();
    EXPECT_EQ(refusing.calls, "V2 begin V3 end ");
    EXPECT_EQ(taking.calls, "begin V3 end ");
}

struct RootCase {
    std::string_view root;
    std::string_view file;
    std::string_view result;
};

ReportMessage With(std::string_view file) {
    ReportMessage message = Finding("V1", 1, std::string(file));
    message.positions.push_back(message.positions.front());
    return message;
}

TEST(SourceRootTransformer, PutsTheRootInThePlaceOfTheFirstMarker) {
    const RootCase cases[] = {
        {"/p", "|?|/a.c", "/p/a.c"}, {"/p", "x|?|y|?|z", "x/py|?|z"}, {"/p", "/q/a.c", "/q/a.c"},
        {"", "|?|/a.c", "|?|/a.c"},  {"/p/", "|?|/a.c", "/p/a.c"},    {"/", "|?|/a.c", "/a.c"},
        {"/p/", "|?|a.c", "/p/a.c"},
    };
    for (const RootCase& row : cases) {
        Recorder recorder;
        SourceRootTransformer(&recorder, std::string(row.root)).Write(With(row.file));
        EXPECT_EQ(recorder.files.back(), row.result);
    }
}

TEST(SourceRootTransformer, LeavesTheVeryObjectWithoutARoot) {
    Recorder recorder;
    const ReportMessage message = With("|?|/a.c");
    SourceRootTransformer(&recorder, "").Write(message);
    EXPECT_EQ(recorder.last, &message);
}

std::string Hidden(const RootCase& row, Orvanta::PathRules rules) {
    Recorder recorder;
    SourceRootHider(&recorder, std::string(row.root), rules).Write(With(row.file));
    return recorder.files.back();
}

TEST(SourceRootHider, PutsTheMarkerInThePlaceOfTheRoot) {
    const RootCase posix[] = {
        {"/p/src", "/p/src/a.c", "|?|/a.c"},        {"/p/src", "/p/src/d/a.c", "|?|/d/a.c"},
        {"/p/src/", "/p/src/a.c", "|?|/a.c"},       {"/p/src", "/p/src2/a.c", "/p/src2/a.c"},
        {"/p/src", "/p/SRC/a.c", "/p/SRC/a.c"},     {"/p/src", "/p/src", "/p/src"},
        {"/p/src", "/q/p/src/a.c", "/q/p/src/a.c"}, {"/", "/a.c", "|?|/a.c"},
    };
    for (const RootCase& row : posix) {
        EXPECT_EQ(Hidden(row, Orvanta::PathRules::Posix), row.result) << row.root << " in " << row.file;
    }
    const RootCase windows[] = {
        {"C:\\P", "c:/p/d\\a.c", "|?|/d\\a.c"},
        {"C:\\P\\Q", "C:/P/Q\\a.c", "|?|\\a.c"},
        {"C:\\P", "C:\\Pa\\a.c", "C:\\Pa\\a.c"},
    };
    for (const RootCase& row : windows) {
        EXPECT_EQ(Hidden(row, Orvanta::PathRules::Windows), row.result) << row.root << " in " << row.file;
    }
}

} // namespace
} // namespace OrvlogConverter
