#include "platform/Files.h"
#include "unit/bundled-core/CoreRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Orvanta {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

// Two units that gcc has preprocessed; each alone is without fault.
class CoreAcrossUnits : public Core {
protected:
    CoreAcrossUnits() {
        folder_.Write("pro ject \303\244/shared.h", "#pragma once\n"
                                                    "void put(int* p);\n"
                                                    "void third(int* a);\n"
                                                    "static inline int twice(const int* q) { return 2 * *q; }\n");
        folder_.Write("pro ject \303\244/caller.c", "#include <stddef.h>\n"
                                                    "#include \"shared.h\"\n"
                                                    "void own(int* z) { *z = 1; }\n"
                                                    "int main(void) {\n"
                                                    "    int two[2] = {0, 0};\n"
                                                    "    put(NULL);\n"
                                                    "    third(two);\n"
                                                    "    own(NULL);\n"
                                                    "    return twice(two);\n"
                                                    "}\n");
        folder_.Write("pro ject \303\244/callee.c", "#include \"shared.h\"\n"
                                                    "void put(int* p) {\n"
                                                    "    *p = 1;\n"
                                                    "}\n"
                                                    "void third(int* a) {\n"
                                                    "    a[2] = twice(a);\n"
                                                    "}\n");
        for (const char* unit : Units) {
            Preprocess(unit);
        }
    }

    void Preprocess(const std::string& unit) {
        std::string text;
        std::string errors;
        Process gcc({"gcc", "-E", unit + ".c"}, project_, EnvironmentBlock(WithChanges({})),
                    MakeRedirectToStringProcessor(text), MakeRedirectToStringProcessor(errors));
        ASSERT_EQ(gcc.get_exit_status(), 0) << errors;
        folder_.Write("temp \303\244/" + unit + ".i", text);
    }

    CoreEnd RunStage(const std::string& unit, const std::string& stage) {
        const std::string base = folder_ / ("temp \303\244/" + unit);
        std::string settings = stage.empty() ? "" : "intermodular=" + stage + "\nintermodular-file=" + Merged() + "\n";
        if (unit == "merge") {
            settings += "intermodular-unit-list=" + List() + "\n";
        } else {
            settings += "intermodular-unit-file=" + base + ".unit\ni-file=" + base +
                        ".i\nengines=cppcheck\nlanguage=C\noutput-file=" + (folder_ / Fragment) +
                        "\nplatform=linux64\npreprocessor=gcc\nsource-file=" + unit + ".c\nstd=c11\n";
        }
        return Run(folder_.Write("temp \303\244/" + unit + ".cfg", settings));
    }

    // The findings of a unit after an ordinary or a performing run, as "file:line [id]", then the steps.
    std::vector<std::string> Found(const std::string& unit, const std::string& stage) {
        const CoreEnd end = RunStage(unit, stage);
        EXPECT_EQ(end.exitCode, 0) << end.standardError;
        std::vector<std::string> texts;
        for (const OrvlogConverter::ReportMessage& finding : Findings()) {
            std::string text = finding.message.substr(0, finding.message.find(']') + 1);
            for (const OrvlogConverter::MessagePosition& position : finding.positions) {
                EXPECT_TRUE(position.file.starts_with(project_ + "/")) << position.file;
                text += " " + position.file.substr(project_.size() + 1) + ":" + std::to_string(position.line);
            }
            texts.push_back(text);
        }
        return texts;
    }

    void CollectAll() {
        std::string list;
        for (const char* unit : Units) {
            const CoreEnd end = RunStage(unit, "first-run");
            ASSERT_EQ(end.exitCode, 0) << end.standardError;
            list += folder_ / ("temp \303\244/" + std::string(unit) + ".unit\n");
        }
        WriteList(list);
    }

    void WriteList(const std::string& text) { folder_.Write("temp \303\244/units", text); }

    [[nodiscard]] std::string Merged() const { return folder_ / "merged.dfo"; }

    [[nodiscard]] std::string List() const { return folder_ / "temp \303\244/units"; }

    // The names of folders that the core has left behind.
    [[nodiscard]] std::vector<std::string> LeftFolders() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_ / "temp \303\244")) {
            if (entry.is_directory()) {
                names.push_back(entry.path().filename().string());
            }
        }
        return names;
    }

    static constexpr const char* Units[] = {"caller", "callee"};
};

TEST_F(CoreAcrossUnits, FaultsOfTwoFilesAreFoundByTheStagesAlone) {
    const std::vector<std::string> callersOwn = Found("caller", "");
    EXPECT_THAT(callersOwn, ElementsAre("[ctunullpointer] caller.c:3 caller.c:8", HasSubstr("[nullPointer] ")));
    EXPECT_THAT(Found("callee", ""), ElementsAre());
    std::filesystem::remove(folder_ / Fragment);

    CollectAll();
    EXPECT_FALSE(PathExists(folder_ / Fragment));
    const CoreEnd linked = RunStage("merge", "merge-info");
    ASSERT_EQ(linked.exitCode, 0) << linked.standardError;
    EXPECT_EQ(linked.standardError + linked.standardOutput, "");

    EXPECT_EQ(Found("caller", "second-run"), callersOwn);
    EXPECT_THAT(Found("callee", "second-run"),
                ElementsAre("[ctunullpointer] callee.c:3 caller.c:6", "[ctuArrayIndex] callee.c:6 caller.c:7"));
    EXPECT_EQ(Findings().front().positions.front().currLine, "    *p = 1;");
    EXPECT_EQ(Findings().front().level, 1U);
    EXPECT_THAT(LeftFolders(), ElementsAre());
}

TEST_F(CoreAcrossUnits, PerformingAnalyzesAgainOnlyWhatHasChanged) {
    CollectAll();
    ASSERT_EQ(RunStage("merge", "merge-info").exitCode, 0);
    const std::string information = "temp \303\244/caller.unit";
    std::string text = folder_.Read(information);
    text.replace(text.find("[nullPointer]"), 13, "[asCollected]");
    folder_.Write(information, text);
    EXPECT_THAT(Found("caller", "second-run"), Contains(HasSubstr("[asCollected]")));

    folder_.Write("temp \303\244/caller.i", folder_.Read("temp \303\244/caller.i") + "int more;\n");
    EXPECT_THAT(Found("caller", "second-run"), Contains(HasSubstr("[nullPointer]")));
    std::filesystem::remove(folder_ / information);
    EXPECT_THAT(Found("caller", "second-run"), Contains(HasSubstr("[nullPointer]")));
}

TEST_F(CoreAcrossUnits, LinkingNamesTheFileThatItCantUse) {
    WriteList("");
    EXPECT_EQ(RunStage("merge", "merge-info").exitCode, 0);
    EXPECT_THAT(Found("callee", "second-run"), ElementsAre());

    CollectAll();
    const std::string damaged = folder_.Write("temp \303\244/callee.unit", "old");
    CoreEnd end = RunStage("merge", "merge-info");
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_EQ(end.standardError, damaged + ": is damaged, or no file of the kind \"orvanta-cppcheck-unit 2\"\n");
    std::filesystem::remove(damaged);
    EXPECT_THAT(RunStage("merge", "merge-info").standardError, testing::StartsWith(damaged + ": "));

    folder_.Write("merged.dfo", "old");
    end = RunStage("callee", "second-run");
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_EQ(end.standardError, Merged() + ": is damaged, or no file of the kind \"orvanta-cppcheck-merged 1\"\n");
    EXPECT_THAT(LeftFolders(), ElementsAre());
}

TEST_F(CoreAcrossUnits, CollectingFailsForAUnitThatCppcheckCantRead) {
    folder_.Write("temp \303\244/callee.i", "# 7 \"callee.c\"\nint f( {\n");
    const CoreEnd end = RunStage("callee", "first-run");
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.standardError, HasSubstr(project_ + "/callee.c, line 7: [syntaxError]"));
    EXPECT_FALSE(PathExists(folder_ / "temp \303\244/callee.unit"));
    EXPECT_THAT(LeftFolders(), ElementsAre());
}

} // namespace
} // namespace Orvanta
