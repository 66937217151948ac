// Guards against a change that goes unseen because a path is taken for the file that it leads to, and against a run
// that waits for ever on what stands in the place of its files.

#include "e2e/support/IncrementalTest.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>

#include <sys/stat.h>

namespace Orvanta {

namespace {

namespace fs = std::filesystem;

using FileIdentityTest = IncrementalTest;

TEST_F(FileIdentityTest, SeesWhichFileAPathLeadsTo) {
    MakeCleanFolder();
    for (const char* const folder : {"one", "two"}) {
        sandbox.Write(folder + std::string("/swapped.h"), std::string("int from_") + folder + ";\n");
        fs::last_write_time(sandbox.Path(folder + std::string("/swapped.h")),
                            fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    sandbox.Write("far/away/.keep", "");
    sandbox.Write("far/up.h", "int up;\n");
    sandbox.Write("up.h", "int wrong;\n");
    fs::create_directory_symlink(sandbox.Path("far/away"), sandbox.Path("link"));
    fs::create_symlink(sandbox.Path("one/swapped.h"), sandbox.Path("turned.h"));
    AddSource("a.c", "#include \"link/../up.h\"\n");
    AddSource("b.c", "#include \"one/swapped.h\"\n");
    AddSource("c.c", "#include \"turned.h\"\n");
    for (int run = 0; run < 2; ++run) {
        ASSERT_EQ(Incremental().exitCode, 0);
    }
    const auto expect = [this](const char* what, const Names& analyzed) {
        EXPECT_EQ(Incremental().exitCode, 0);
        Names names = Analyzed();
        names.erase(std::unique(names.begin(), names.end()), names.end()); // each source is in the build twice
        EXPECT_EQ(names, analyzed) << what;
        ExpectReportOfCleanRun();
    };
    expect("nothing", {});
    sandbox.Write("far/up.h", "int up2;\n");
    expect("a file above the end of a link", {"a.c"});
    sandbox.Write("up.h", "int wrong2;\n");
    expect("a file above the link", {});
    fs::remove(sandbox.Path("turned.h"));
    fs::create_symlink(sandbox.Path("two/swapped.h"), sandbox.Path("turned.h"));
    expect("a link that leads elsewhere", {"c.c"});
    fs::rename(sandbox.Path("one"), sandbox.Path("other"));
    fs::rename(sandbox.Path("two"), sandbox.Path("one"));
    fs::rename(sandbox.Path("other"), sandbox.Path("two"));
    expect("folders in each other's places", {"b.c", "c.c"});
}

TEST_F(FileIdentityTest, SeesWhichCompilerAPathLeadsTo) {
    const std::string other = sandbox.AddCompiler("copy/gcc-13", "fake-gcc (Fake) 12.2.0\n");
    sandbox.Write("wrapper", "#!/bin/sh\nexec " + sandbox.Path("tools/fake-gcc") + " \"$@\"\n");
    fs::permissions(sandbox.Path("wrapper"), fs::perms::owner_all);
    fs::create_symlink(sandbox.Path("tools/fake-gcc"), sandbox.Path("gcc"));
    sandbox.ForgetEntries();
    Entry entry;
    entry.arguments = {sandbox.Path("gcc"), "-c", sandbox.Path("a.c")};
    sandbox.AddEntry(entry);
    entry.arguments = {sandbox.Path("wrapper"), "-c", sandbox.Path("b.c")};
    sandbox.AddEntry(entry);
    for (int run = 0; run < 2; ++run) {
        ASSERT_EQ(Incremental().exitCode, 0);
    }
    EXPECT_EQ(Analyzed(), Names{});
    fs::remove(sandbox.Path("gcc"));
    fs::create_symlink(other, sandbox.Path("gcc")); // of equal content, but beside other parts
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"a.c"});
    sandbox.SetVariable("PATH", "/bin:/usr/bin:" + sandbox.Path());
    EXPECT_EQ(Incremental().exitCode, 0);
    EXPECT_EQ(Analyzed(), Names{"b.c"}) << "a script finds its programs there";
}

TEST_F(FileIdentityTest, WaitsForNothingThatStandsInTheWay) {
    MakeCleanFolder();
    const char* const files[] = {".Orvanta/depend_info.json", ".Orvanta/unit_history.bin", ".Orvanta/findings-1",
                                 ".Orvanta/report.mark",      ".Orvanta/.orvtmp-clock",    ".Orvanta"};
    for (const char* const file : files) {
        for (const bool isPipe : {true, false}) {
            fs::remove_all(sandbox.Path(".Orvanta"));
            ASSERT_EQ(Incremental().exitCode, 0);
            fs::remove_all(sandbox.Path(file));
            if (isPipe) {
                ASSERT_EQ(::mkfifo(sandbox.Path(file).c_str(), 0600), 0);
            } else {
                fs::create_symlink(sandbox.Path("nowhere/at/all"), sandbox.Path(file));
            }
            sandbox.Write("c.c", std::string("int c;\n//") + file + (isPipe ? "p\n" : "l\n"));
            const RunResult result = Incremental();
            EXPECT_EQ(result.exitCode, 0) << file << result;
            EXPECT_TRUE(result.Says("Compiler invocations: 3 (")) << file << result;
            ExpectReportOfCleanRun();
        }
    }
}

TEST_F(FileIdentityTest, FindsListedFilesThroughLinks) {
    ASSERT_EQ(Incremental().exitCode, 0);
    const std::string link = sandbox.Path() + "-link";
    fs::create_directory_symlink(sandbox.Path(), link);
    fs::remove(sandbox.Path("outer.h"));
    sandbox.Write("a.c", "int a;\n");
    const std::map<std::string, Names> lists = {
        {"c.c", {"c.c"}}, {"common.h", {"b.c"}}, {"outer.h", {"a.c"}}, // gone: it was known
    };
    for (const auto& [list, analyzed] : lists) {
        fs::copy(sandbox.Path(".Orvanta"), sandbox.Path("kept"), fs::copy_options::recursive);
        sandbox.Write("list.txt", link + "/" + list + "\n");
        sandbox.ForgetCoreCalls();
        const RunResult result = sandbox.Analyze({"-S", "list.txt", "-o", "report.json"});
        EXPECT_EQ(result.exitCode, 0) << list << result;
        EXPECT_EQ(Analyzed(), analyzed) << list << result;
        fs::remove_all(sandbox.Path(".Orvanta"));
        fs::rename(sandbox.Path("kept"), sandbox.Path(".Orvanta"));
    }
    fs::remove(link);

    // To the system, ".." leads up from where the link ends; to who stands there, from the link.
    fs::create_directories(sandbox.Path("far/sub"));
    fs::create_directory_symlink(sandbox.Path("far/sub"), sandbox.Path("near"));
    sandbox.Write("far/sub/list.txt", "../b.c\n");
    sandbox.ForgetCoreCalls();
    Environment environment = sandbox.DriverEnvironment();
    environment["PWD"] = sandbox.Path("near");
    const Arguments command = Sandbox::AnalyzeCommand(
        {"-f", sandbox.Path("compile_commands.json"), "-S", "list.txt", "-o", sandbox.Path("report.json")});
    const RunResult result = RunningDriver(command, sandbox.Path("near"), environment).Wait();
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_EQ(Analyzed(), Names{"b.c"}) << result;
}

// A link in a folder that is trusted would lead out of it.
TEST_F(FileIdentityTest, ACompilerIsWhereItsLinksLead) {
    sandbox.ForgetEntries();
    const std::string trusted = sandbox.AddCompiler("plain", "fake (GCC) 12\n");
    sandbox.Write("else/a.c", "int a;\n");
    std::filesystem::copy_file(trusted, sandbox.Path("else/plain"));
    std::filesystem::create_symlink("../else/plain", sandbox.Path("tools/leads-out"));
    std::filesystem::create_symlink("../tools/plain", sandbox.Path("else/leads-in"));
    std::filesystem::create_directory_symlink("tools", sandbox.Path("named"));
    sandbox.AddEntry({{sandbox.Path("tools/leads-out"), "-c", "else/a.c"}});
    sandbox.AddEntry({{sandbox.Path("else/leads-in"), "-c", "else/a.c"}});
    const RunResult result = sandbox.Analyze({"--compiler-path", "named", "-o", "report.json"});
    EXPECT_TRUE(result.Says("(1 analyzed, 1 failed")) << result;
    EXPECT_TRUE(result.Says("/tools/leads-out\" lies in none of the folders of --compiler-path")) << result;
}

} // namespace

} // namespace Orvanta
