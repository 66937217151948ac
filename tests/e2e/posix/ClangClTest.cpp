// Guards against a clang-cl on Linux that takes paths from the root for flags, or whose units lose their headers. The
// headers are those that clang brings along: there is no SDK.

#include "e2e/support/SandboxTest.h"
#include "platform/Executable.h"

#include <algorithm>
#include <filesystem>

namespace Orvanta {

namespace {

class ClangClTest : public SandboxTest {
protected:
    ClangClTest() {
        sandbox.Write("tools/note", "");
        std::filesystem::create_symlink(FindExecutable("clang"), compiler_);
        sandbox.Write("include/shared.h", "#pragma once\n"
                                          "#include <stddef.h>\n"
                                          "static inline size_t FromHeader(void) {\n"
                                          "    size_t values[2] = {0, 1};\n"
                                          "    return values[2];\n"
                                          "}\n");
        sandbox.Write("src/plain.c", "#include \"shared.h\"\n"
                                     "int Plain(void) {\n"
                                     "    char text[4];\n"
                                     "    text[4] = FROM_VARIABLE;\n"
                                     "    return text[0] + (int)FromHeader();\n"
                                     "}\n");
        sandbox.Write("src/main.cpp", "#include \"shared.h\"\n"
                                      "int main() {\n"
                                      "    int values[3] = {0, 1, 2};\n"
                                      "    return values[3] + static_cast<int>(FromHeader());\n"
                                      "}\n");
        sandbox.AddEntry({{compiler_, "/nologo", "/O2", "/WX", "-clang:-MD", "-clang:-MFplain.d", "/Foplain.obj",
                           "-Iinclude", "/c", "--", sandbox.Path("src/plain.c")},
                          "",
                          {{"CL", "/DFROM_VARIABLE#1"}}});
        sandbox.AddEntry({{"../tools/clang-cl", "-m32", "/std:c++17", "/Yushared.h", "/FIshared.h", "/I", "../include",
                           "/Tpmain.cpp"},
                          sandbox.Path("src")});
    }

    static std::size_t OverrunsAt(const std::vector<Finding>& findings, const std::string& file, unsigned line) {
        return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), [&](const Finding& finding) {
            return finding.file == file && finding.line == line &&
                   finding.message.find("[arrayIndexOutOfBounds]") != std::string::npos;
        }));
    }

    std::string compiler_ = sandbox.Path("tools/clang-cl");
};

TEST_F(ClangClTest, BundledCoreFindsTheUsersErrorsWhereTheyAre) {
    sandbox.WriteDatabase();
    const RunResult result = sandbox.Run({"analyze", "-o", "report.json"});
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<Finding> findings = Report();
    EXPECT_EQ(OverrunsAt(findings, sandbox.Path("include/shared.h"), 5), 1U);
    EXPECT_EQ(OverrunsAt(findings, sandbox.Path("src/plain.c"), 4), 1U);
    EXPECT_EQ(OverrunsAt(findings, sandbox.Path("src/main.cpp"), 4), 1U);
    for (const Finding& finding : findings) {
        EXPECT_TRUE(finding.file.starts_with(sandbox.Path())) << finding;
    }
    EXPECT_FALSE(sandbox.Exists("plain.d")) << "a file of the build was written again";
    EXPECT_FALSE(result.Says("vcvarsall")) << result;
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(ClangClTest, CoreIsToldWhatTheCompilerSays) {
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 0) << result;
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), 2U) << result;
    const std::vector<std::pair<const char*, const char*>> plain = {
        {"language", "C"}, {"platform", "x64"}, {"preprocessor", "visualcpp"}, {"std", "c17"}};
    const std::vector<std::pair<const char*, const char*>> main = {{"language", "C++"},
                                                                   {"platform", "Win32"},
                                                                   {"preprocessor", "visualcpp"},
                                                                   {"source-file", "main.cpp"},
                                                                   {"std", "c++17"}};
    for (const auto& [call, settings] : {std::pair{calls[0], plain}, std::pair{calls[1], main}}) {
        for (const auto& [key, value] : settings) {
            EXPECT_EQ(call.Setting(key), value);
        }
        EXPECT_NE(call.preprocessed.find("FromHeader"), std::string::npos);
    }
}

TEST_F(ClangClTest, FailureSaysWhatTheCompilerSaid) {
    sandbox.ForgetEntries();
    sandbox.Write("src/broken.c", "#include \"missing.h\"\n");
    sandbox.AddEntry({{compiler_, "/c", sandbox.Path("src/broken.c")}});
    const RunResult result = sandbox.Analyze();
    EXPECT_EQ(result.exitCode, 1) << result;
    EXPECT_TRUE(result.Says("'missing.h' file not found")) << result;
}

} // namespace

} // namespace Orvanta
