#include "report/ReportOutputs.h"

#include "support/Findings.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <functional>

namespace OrvlogConverter {
namespace {

using Orvanta::TestFolder;

std::string LineOf(const std::string& code, LineFormat format) {
    std::string line;
    AppendMessageLine(line, Finding(code), format);
    return line;
}

TEST(JsonOutput, IsOneDocumentAfterEveryCommit) {
    const TestFolder folder;
    const std::string head = "{\"version\": 1, \"warnings\": [";
    const std::string first = LineOf("V1", LineFormat::Json);
    const std::string second = LineOf("V2", LineFormat::Json);

    JsonOutput output(folder / "report.json");
    output.Begin();
    EXPECT_EQ(folder.Read("report.json"), head + "\n]}\n");
    EXPECT_TRUE(output.Write(Finding("V1")));
    EXPECT_EQ(folder.Read("report.json"), head + "\n]}\n");
    output.Commit();
    EXPECT_EQ(folder.Read("report.json"), head + "\n" + first + "\n]}\n");
    EXPECT_TRUE(output.Write(Finding("V2")));
    output.End();
    EXPECT_EQ(folder.Read("report.json"), head + "\n" + first + ",\n" + second + "\n]}\n");
}

TEST(LineOutput, HoldsWholeLinesOfItsForm) {
    const TestFolder folder;
    for (const LineFormat format : {LineFormat::Json, LineFormat::Raw}) {
        LineOutput output(folder / "report", format);
        EXPECT_EQ(folder.Read("report"), "");
        output.Write(Finding("V1"));
        output.Write(Finding("V2"));
        output.Commit();
        output.Write(Finding("V3"));
        output.End();
        EXPECT_EQ(folder.Read("report"),
                  LineOf("V1", format) + "\n" + LineOf("V2", format) + "\n" + LineOf("V3", format) + "\n");
    }
}

TEST(ConsoleOutput, WritesACommitAtATime) {
    ConsoleOutput output(LineFormat::Raw);
    const auto printedBy = [](const std::function<void()>& action) {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(printedBy([&] { output.Write(Finding("V1")); }), "");
    output.Write(Finding("V2"));
    EXPECT_EQ(printedBy([&] { output.Commit(); }),
              LineOf("V1", LineFormat::Raw) + "\n" + LineOf("V2", LineFormat::Raw) + "\n");
    output.Write(Finding("V3"));
    EXPECT_EQ(printedBy([&] { output.End(); }), LineOf("V3", LineFormat::Raw) + "\n");
    EXPECT_EQ(printedBy([&] { output.Commit(); }), "");
}

} // namespace
} // namespace OrvlogConverter
