#include "report/DuplicateFilter.h"

#include <gtest/gtest.h>

#include <functional>

namespace OrvlogConverter {
namespace {

ReportMessage FullMessage() {
    return {"V501", "text", "id", {{"a.c", 1, "p", "c", "n", 2, 3, 4}, {"b.h", 5, "", "", "", 0, 0, 0}}, 6, 2, false};
}

class Recorder : public IOutput {
public:
    void Begin() override { ++begins; }

    bool Write(const ReportMessage& message) override {
        messages.push_back(message);
        return true;
    }

    void End() override { ++ends; }

    int begins = 0;
    int ends = 0;
    std::vector<ReportMessage> messages;
};

TEST(DuplicateFilter, KeepsTheFirstOfEqualMessagesAndAllThatDiffer) {
    const std::function<void(ReportMessage&)> changes[] = {
        [](ReportMessage& message) { message.code = "V502"; },
        [](ReportMessage& message) { message.message += ' '; },
        [](ReportMessage& message) { message.sastId.clear(); },
        [](ReportMessage& message) { message.cwe = 7; },
        [](ReportMessage& message) { message.level = 1; },
        [](ReportMessage& message) { message.falseAlarm = true; },
        [](ReportMessage& message) { message.positions.pop_back(); },
        [](ReportMessage& message) { std::swap(message.positions[0], message.positions[1]); },
        [](ReportMessage& message) { message.positions[1].file = "c.h"; },
        [](ReportMessage& message) { message.positions[1].line = 256; },
        [](ReportMessage& message) { message.positions[0].prevLine = "P"; },
        [](ReportMessage& message) { message.positions[0].currLine = "cn"; },
        [](ReportMessage& message) { message.positions[0].nextLine.clear(); },
        [](ReportMessage& message) { message.positions[0].nextHash = 9; },
        // The same letters in other fields.
        [](ReportMessage& message) { message.code = "V50", message.message = "1text"; },
    };
    Recorder recorder;
    DuplicateFilter filter(&recorder);
    std::vector<ReportMessage> expected = {FullMessage()};
    filter.Begin();
    EXPECT_TRUE(filter.Write(FullMessage()));
    for (const auto& change : changes) {
        expected.push_back(FullMessage());
        change(expected.back());
        EXPECT_TRUE(filter.Write(expected.back()));
        EXPECT_FALSE(filter.Write(expected.back()));
        EXPECT_FALSE(filter.Write(FullMessage()));
    }
    filter.End();
    EXPECT_EQ(recorder.messages, expected);
    EXPECT_EQ(recorder.begins, 1);
    EXPECT_EQ(recorder.ends, 1);
}

TEST(DuplicateFilter, TakesMessagesWithoutANextStage) {
    DuplicateFilter filter(nullptr);
    filter.Begin();
    EXPECT_TRUE(filter.Write(FullMessage()));
    EXPECT_FALSE(filter.Write(FullMessage()));
    filter.End();
}

class CodePrefixer : public ITransform {
public:
    using ITransform::ITransform;

    ReportMessage Transform(ReportMessage message) override {
        message.code.insert(0, "X");
        return message;
    }
};

TEST(Transform, HandsOnTheRewrittenMessage) {
    Recorder recorder;
    DuplicateFilter filter(&recorder);
    CodePrefixer transform(&filter);
    transform.Begin();
    EXPECT_TRUE(transform.Write(FullMessage()));
    EXPECT_FALSE(transform.Write(FullMessage())); // what the next stage says
    transform.End();
    ASSERT_EQ(recorder.messages.size(), 1U);
    EXPECT_EQ(recorder.messages[0].code, "XV501");
    EXPECT_EQ(recorder.begins + recorder.ends, 2);
    EXPECT_TRUE(CodePrefixer(nullptr).Write(FullMessage()));
}

} // namespace
} // namespace OrvlogConverter
