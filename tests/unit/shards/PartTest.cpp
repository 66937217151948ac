// Guards against a part that says something else than its shard has found, or that is taken for whole when it is not.

#include "platform/Files.h"
#include "report/DuplicateFilter.h"
#include "shards/PartReader.h"
#include "shards/PartWriter.h"
#include "support/ErrorOf.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Orvanta {
namespace {

using OrvlogConverter::ReportMessage;

ReportMessage MessageOf(const std::string& text) {
    ReportMessage message{"V501", text, "sast", {}, 570, 2, true};
    message.positions.push_back({"/a b.c", 4'000'000'000U, "before\xFF", "at", "", 1, 2, 3});
    message.positions.push_back({"C:\\x.h", 1, "", "", "", 0, 0, 0});
    return message;
}

const std::vector<SkippedInvocation>& Skipped() {
    static const std::vector<SkippedInvocation> skipped = {
        {2, InvocationFate::NotACompilation, "a.o", "link only"},
        {9, InvocationFate::DeletedSinceTrace, "b.c", "gone"},
    };
    return skipped;
}

PartHead Head() {
    PartHead head;
    head.shard = {2, 3};
    head.allUnits = 1'000'000;
    head.invocations = 77;
    head.makers = {"1.2", 7, "core 3", {1, 2}, {3, 4}, {5, 6}, {7, 8}, {9, 10}, {11, ~0ULL}};
    head.reportSettings = {{"analysis-mode", "4"}, {"sourcetree-root", "/src"}};
    head.pathRules = PathRules::Windows;
    head.hasBase = true;
    return head;
}

UnitResult ResultOf(std::size_t unit) {
    UnitResult result;
    result.status = unit % 5 == 0 ? AnalyzerStatus::CoreFailed : AnalyzerStatus::Analyzed;
    result.reason = unit % 5 == 0 ? "line\nline" : "";
    result.isInSystemFolder = unit % 2 == 0;
    result.importsModules = unit % 3 == 0;
    result.tallies = {{"text", {"x", std::to_string(unit)}}, {"alone", {}}};
    result.cost = {{std::chrono::microseconds(unit), std::chrono::microseconds(2), 1ULL << 40U},
                   {std::chrono::microseconds(3), std::chrono::microseconds(4), 5},
                   unit};
    return result;
}

// A part of units, each with as many findings as its number has ones in front, and a hidden one.
void Write(const std::string& path, std::size_t units, std::size_t ended) {
    PartWriter writer(
        path, Head(), units,
        [](std::size_t unit) {
            return PartUnit{unit * 7, unit + 1, "/s" + std::to_string(unit)};
        },
        Skipped());
    writer.Write(MessageOf("notice"));
    writer.Commit();
    for (std::size_t unit = 0; unit < ended; ++unit) {
        for (std::size_t finding = 0; finding < unit % 4; ++finding) {
            writer.Write(MessageOf(std::to_string(unit) + std::string(unit, 'x')));
        }
        writer.HiddenFindings().Write(MessageOf("hidden" + std::to_string(unit)));
        writer.UnitCommitted(unit, ResultOf(unit));
        writer.Commit();
    }
    writer.End();
}

void ExpectUnits(PartReader& reader, std::size_t units, std::size_t ended) {
    for (std::size_t unit = 0; unit < units; ++unit) {
        const PartResult read = reader.Next();
        const bool hasEnded = unit < ended;
        const std::size_t findings = hasEnded ? unit % 4 : 0;
        EXPECT_EQ(read.result.ownFindings,
                  std::vector(findings, MessageOf(std::to_string(unit) + std::string(unit, 'x'))));
        PartEncoder bytes;
        PartEncoder expected;
        AddOutcome(bytes, read.result);
        AddOutcome(expected, hasEnded ? ResultOf(unit) : UnitResult{.status = AnalyzerStatus::Stopped});
        EXPECT_EQ(bytes.Bytes(), expected.Bytes());
        EXPECT_EQ(read.result.status, hasEnded ? ResultOf(unit).status : AnalyzerStatus::Stopped);
        EXPECT_EQ(read.result.cost, hasEnded ? ResultOf(unit).cost : UnitCost());
        EXPECT_EQ(read.hiddenFindings.size(), hasEnded ? 1U : 0U);
        if (hasEnded) {
            EXPECT_EQ(read.hiddenFindings.at(0),
                      OrvlogConverter::FingerprintOf(MessageOf("hidden" + std::to_string(unit))));
        }
    }
}

TEST(Part, ComesBackAsItWasWrittenFromAnyNumberOfBlocks) {
    const TestFolder folder;
    for (const std::size_t units : {0U, 1U, 900U}) {
        const std::string path = folder / "a.orvpart";
        Write(path, units, units);
        PartReader reader(path);
        PartEncoder bytes;
        PartEncoder expected;
        PartHead head = Head();
        head.notices = {MessageOf("notice")};
        AddHead(bytes, reader.Head());
        AddHead(expected, head);
        EXPECT_EQ(bytes.Bytes(), expected.Bytes());
        EXPECT_EQ(reader.Head().notices, head.notices);
        EXPECT_EQ(reader.Head().reportSettings, head.reportSettings);
        ASSERT_EQ(reader.Units().size(), units);
        EXPECT_EQ(reader.StoppedUnits(), 0U);
        const std::vector<SkippedInvocation> skipped = reader.ReadSkipped();
        ASSERT_EQ(skipped.size(), 2U);
        EXPECT_EQ(skipped[1].what + skipped[1].reason, "b.cgone");
        EXPECT_EQ(skipped[1].fate, InvocationFate::DeletedSinceTrace);
        ExpectUnits(reader, units, units);
    }
}

TEST(Part, TellsWhichUnitsHaveNotEndedAtEveryMoment) {
    const TestFolder folder;
    const std::string path = folder / "a.orvpart";
    Write(path, 5, 5); // of an earlier run
    {
        PartWriter writer(
            path, Head(), 5,
            [](std::size_t unit) {
                return PartUnit{unit, 1, "/s"};
            },
            Skipped());
        writer.Commit();
        writer.UnitCommitted(0, ResultOf(0));
        writer.Commit();
    } // killed
    PartReader killed(path);
    EXPECT_EQ(killed.StoppedUnits(), 5U);
    ExpectUnits(killed, 5, 0);
    Write(path, 5, 3);
    PartReader stopped(path);
    EXPECT_EQ(stopped.StoppedUnits(), 2U);
    ExpectUnits(stopped, 5, 3);
}

TEST(Part, IsRefusedWhenAnyByteIsAnotherOneOrMissing) {
    const TestFolder folder;
    const std::string path = folder / "a.orvpart";
    Write(path, 3, 3);
    const std::string whole = ReadWholeFile(path);
    const auto errorOf = [&](const std::string& bytes) {
        folder.Write("a.orvpart", bytes);
        return ErrorOf([&] { PartReader{path}; });
    };
    const std::string damaged = path + ": it is damaged or cut short";
    for (std::size_t place = 0; place < whole.size(); place += 3) {
        std::string bytes = whole;
        bytes[place] = static_cast<char>(bytes[place] ^ 1);
        EXPECT_NE(errorOf(bytes), "no error") << place;
    }
    for (std::size_t size = 15; size < whole.size(); size += 5) {
        EXPECT_EQ(errorOf(whole.substr(0, size)), damaged);
    }
    EXPECT_EQ(errorOf(whole + "x"), damaged);
    EXPECT_EQ(errorOf(""), path + " is no part that analyze --shard has written");
    EXPECT_EQ(errorOf("{}"), path + " is no part that analyze --shard has written");
    EXPECT_EQ(errorOf("orvanta part 2\n"), path + " was written by another version of this program");
    EXPECT_EQ(ErrorOf([&] { PartReader{folder / "none"}; }), (folder / "none") + ": No such file or directory");
}

} // namespace
} // namespace Orvanta
