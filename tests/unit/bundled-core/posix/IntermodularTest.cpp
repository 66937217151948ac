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

// The stages over units that gcc has preprocessed.
class CoreStages : public Core {
protected:
    // `name` as in "callee.c".
    void AddSource(const std::string& name, const std::string& text) {
        folder_.Write("pro ject \303\244/" + name, text);
        units_.push_back(name);
        Preprocess(name);
    }

    void Preprocess(const std::string& unit) {
        std::string text;
        std::string errors;
        Process gcc({"gcc", "-E", unit}, project_, EnvironmentBlock(WithChanges({})),
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
                        ".i\nengines=cppcheck\nlanguage=" + (unit.ends_with(".c") ? "C" : "C++") +
                        "\noutput-file=" + (folder_ / Fragment) +
                        "\nplatform=linux64\npreprocessor=gcc\nsource-file=" + unit + "\nstd=\n";
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
        for (const std::string& unit : units_) {
            const CoreEnd end = RunStage(unit, "first-run");
            ASSERT_EQ(end.exitCode, 0) << end.standardError;
            list += folder_ / ("temp \303\244/" + unit + ".unit\n");
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

    std::vector<std::string> units_;
};

// Two units, each of which is without fault alone.
class CoreAcrossUnits : public CoreStages {
protected:
    CoreAcrossUnits() {
        folder_.Write("pro ject \303\244/shared.h", "#pragma once\n"
                                                    "void put(int* p);\n"
                                                    "void third(int* a);\n"
                                                    "static inline int twice(const int* q) { return 2 * *q; }\n");
        AddSource("caller.c", "#include <stddef.h>\n"
                              "#include \"shared.h\"\n"
                              "void own(int* z) { *z = 1; }\n"
                              "int main(void) {\n"
                              "    int two[2] = {0, 0};\n"
                              "    put(NULL);\n"
                              "    third(two);\n"
                              "    own(NULL);\n"
                              "    return twice(two);\n"
                              "}\n");
        AddSource("callee.c", "#include \"shared.h\"\n"
                              "void put(int* p) {\n"
                              "    *p = 1;\n"
                              "}\n"
                              "void third(int* a) {\n"
                              "    a[2] = twice(a);\n"
                              "}\n");
    }
};

TEST_F(CoreAcrossUnits, FaultsOfTwoFilesAreFoundByTheStagesAlone) {
    const std::vector<std::string> callersOwn = Found("caller.c", "");
    EXPECT_THAT(callersOwn, ElementsAre("[ctunullpointer] caller.c:3 caller.c:8", HasSubstr("[nullPointer] ")));
    EXPECT_THAT(Found("callee.c", ""), ElementsAre());
    std::filesystem::remove(folder_ / Fragment);

    CollectAll();
    EXPECT_FALSE(PathExists(folder_ / Fragment));
    const CoreEnd linked = RunStage("merge", "merge-info");
    ASSERT_EQ(linked.exitCode, 0) << linked.standardError;
    EXPECT_EQ(linked.standardError + linked.standardOutput, "");

    EXPECT_EQ(Found("caller.c", "second-run"), callersOwn);
    EXPECT_THAT(Found("callee.c", "second-run"),
                ElementsAre("[ctunullpointer] callee.c:3 caller.c:6", "[ctuArrayIndex] callee.c:6 caller.c:7"));
    EXPECT_EQ(Findings().front().positions.front().currLine, "    *p = 1;");
    EXPECT_EQ(Findings().front().level, 1U);
    EXPECT_THAT(LeftFolders(), ElementsAre());
}

TEST_F(CoreAcrossUnits, PerformingAnalyzesAgainOnlyWhatHasChanged) {
    CollectAll();
    ASSERT_EQ(RunStage("merge", "merge-info").exitCode, 0);
    const std::string information = "temp \303\244/caller.c.unit";
    std::string text = folder_.Read(information);
    text.replace(text.find("[nullPointer]"), 13, "[asCollected]");
    folder_.Write(information, text);
    EXPECT_THAT(Found("caller.c", "second-run"), Contains(HasSubstr("[asCollected]")));

    folder_.Write("temp \303\244/caller.c.i", folder_.Read("temp \303\244/caller.c.i") + "int more;\n");
    EXPECT_THAT(Found("caller.c", "second-run"), Contains(HasSubstr("[nullPointer]")));
    std::filesystem::remove(folder_ / information);
    EXPECT_THAT(Found("caller.c", "second-run"), Contains(HasSubstr("[nullPointer]")));
}

TEST_F(CoreAcrossUnits, LinkingNamesTheFileThatItCantUse) {
    WriteList("");
    EXPECT_EQ(RunStage("merge", "merge-info").exitCode, 0);
    EXPECT_THAT(Found("callee.c", "second-run"), ElementsAre());

    CollectAll();
    const std::string damaged = folder_.Write("temp \303\244/callee.c.unit", "old");
    CoreEnd end = RunStage("merge", "merge-info");
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_EQ(end.standardError, damaged + ": is damaged, or no file of the kind \"orvanta-cppcheck-unit 3\"\n");
    std::filesystem::remove(damaged);
    EXPECT_THAT(RunStage("merge", "merge-info").standardError, testing::StartsWith(damaged + ": "));

    folder_.Write("merged.dfo", "old");
    end = RunStage("callee.c", "second-run");
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_EQ(end.standardError, Merged() + ": is damaged, or no file of the kind \"orvanta-cppcheck-merged 1\"\n");
    EXPECT_THAT(LeftFolders(), ElementsAre());
}

TEST_F(CoreAcrossUnits, CollectingFailsForAUnitThatCppcheckCantRead) {
    folder_.Write("temp \303\244/callee.c.i", "# 7 \"callee.c\"\nint f( {\n");
    const CoreEnd end = RunStage("callee.c", "first-run");
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.standardError, HasSubstr(project_ + "/callee.c, line 7: [syntaxError]"));
    EXPECT_FALSE(PathExists(folder_ / "temp \303\244/callee.c.unit"));
    EXPECT_THAT(LeftFolders(), ElementsAre());
}

// Each call passes on what the one of the two functions of its name can't take, and the other one can.
TEST_F(CoreStages, FunctionsAreKnownByTheirNamesAndNotByTheirDeclarations) {
    folder_.Write("pro ject \303\244/shared.h", R"(#pragma once
namespace N { void clear(int* p); }
struct Box {
    void set(int* p);
    void set(long* p);
    void last(int* p) const;
    static void one(int* p);
    void grow(int& r);
    virtual void may(int* p);
};
struct Tin { void set(int* p); };
)");
    AddSource("caller.cpp", R"(#include "shared.h"
extern void byHand(int* p);
extern "C" void ofC(int* p);
void over(char* p);
void over(int* p);
void other(int* p);
static void own(int* p) { if (p) *p = 1; }
namespace { void hidden(int* p) { if (p) *p = 1; } }
void faults(Box& box, Box* far) {
    int two[2] = {0, 0};
    int x;
    box.set(static_cast<int*>(nullptr)); // line 12
    far->last(two);
    Box::one(&x);
    N::clear(0);
    byHand(0);
    ofC(0);
    int y;
    box.grow(y); // line 19
}
void right(Box& box, Tin& tin) {
    int two[2] = {0, 0};
    box.set(static_cast<long*>(nullptr));
    over(two);
    over(static_cast<int*>(0));
    tin.set(0);
    box.may(0);
    own(0);
    hidden(0);
    other(0);
}
)");
    AddSource("callee.cpp", R"(#include "shared.h"
void Box::set(int* p) { *p = 1; }
void Box::set(long* p) { if (p) *p = 1; }
void Box::last(int* p) const { p[2] = 1; }
void Box::one(int* p) { *p += 1; }
void Box::grow(int& r) { r += 1; }
void Box::may(int* p) { *p = 1; }
void Tin::set(int* p) { if (p) *p = 1; }
void N::clear(int* p) { *p = 0; }
void byHand(int* p) { *p = 1; }
void over(char* p) { p[8] = 0; }
void over(int* p) { if (p) *p = 1; }
static void own(int* p) { *p = 1; }
namespace { void hidden(int* p) { *p = 1; } }
void use(int* p) { own(p); hidden(p); }
void other(int* p) { *p = 1; }
)");
    AddSource("callee.c", R"(void ofC(int* p) { *p = 1; }
extern void handC(int* p);
static void own(int* p) { *p = 1; }
void call_c(void) { int x = 0; handC(0); own(&x); }
)");
    // Of another program: its "other" and that of C++ are two.
    AddSource("second.cpp", "void handC(int* p) { *p = 1; }\nvoid other(int* p) { if (p) *p = 1; }\n");
    AddSource("second.c", "void handC(int* p) { *p = 1; }\n");
    CollectAll();
    const CoreEnd linked = RunStage("merge", "merge-info");
    ASSERT_EQ(linked.exitCode, 0) << linked.standardError;

    EXPECT_THAT(Found("callee.cpp", "second-run"),
                ElementsAre("[ctunullpointer] callee.cpp:2 caller.cpp:12", "[ctuArrayIndex] callee.cpp:4 caller.cpp:13",
                            "[ctuuninitvar] callee.cpp:5 caller.cpp:14", "[ctuuninitvar] callee.cpp:6 caller.cpp:19",
                            "[ctunullpointer] callee.cpp:9 caller.cpp:15",
                            "[ctunullpointer] callee.cpp:10 caller.cpp:16"));
    EXPECT_THAT(Found("callee.c", "second-run"), ElementsAre("[ctunullpointer] callee.c:1 caller.cpp:17"));
    EXPECT_THAT(Found("second.c", "second-run"), ElementsAre("[ctunullpointer] second.c:1 callee.c:4"));
    EXPECT_THAT(Found("second.cpp", "second-run"), ElementsAre());
}

TEST_F(CoreStages, ReturnedNullPointersAreFollowed) {
    AddSource("user.c", R"(struct S { int v; };
extern int* none(void);
extern int* find(int n);
extern struct S* make(int n);
extern int* good(void);
int direct(void) { return *none(); }
int later(void) { int* p = none(); *p = 1; return 0; }
int maybe(void) { int* p = find(3); return p[0]; }
int member(void) { return make(1)->v; }
int asked(void) { int* p = find(1); if (!p) return 1; return *p; }
int related(int n) { int* p = find(n); if (n > 2) return 0; return *p; }
int size(void) { int* p = find(1); return sizeof(*p); }
int right(void) { return *good(); }
)");
    AddSource("maker.c", R"(struct S { int v; };
int* none(void) { return 0; }
int* find(int n) { static int v; if (n > 2) return 0; return &v; }
struct S* make(int n) { static struct S s; return n < 0 ? 0 : &s; }
int* good(void) { static int v; return &v; }
)");
    AddSource("more.cpp", R"(struct Box { int* item(); virtual int* may(); };
int use(Box& box) { return *box.may() + *box.item(); }
)");
    AddSource("box.cpp", R"(struct Box { int* item(); virtual int* may(); };
int* Box::item() { return nullptr; }
int* Box::may() { return nullptr; }
)");
    CollectAll();
    const CoreEnd linked = RunStage("merge", "merge-info");
    ASSERT_EQ(linked.exitCode, 0) << linked.standardError;
    std::vector<std::string> across = Found("user.c", "second-run");
    std::erase_if(across, [](const std::string& text) { return !text.starts_with("[ctu"); });
    EXPECT_THAT(across, ElementsAre("[ctunullpointer] user.c:6 maker.c:2", "[ctunullpointer] user.c:7 maker.c:2",
                                    "[ctunullpointer] user.c:8 maker.c:3", "[ctunullpointer] user.c:9 maker.c:4"));
    // Not surely null.
    const std::vector<OrvlogConverter::ReportMessage> findings = Findings();
    EXPECT_EQ(findings[0].level, 1U);
    EXPECT_EQ(findings[0].message, "[ctunullpointer] Null pointer dereference: what none() returns");
    EXPECT_EQ(findings[2].level, 3U);
    EXPECT_EQ(findings[3].level, 3U);
    EXPECT_THAT(Found("more.cpp", "second-run"), ElementsAre("[ctunullpointer] more.cpp:2 box.cpp:2"));
}

} // namespace
} // namespace Orvanta
