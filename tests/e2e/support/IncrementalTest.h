#pragma once

#include "e2e/support/SandboxTest.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace Orvanta {

/// A project of three units that share headers, and incremental runs over it.
class IncrementalTest : public SandboxTest {
protected:
    static constexpr const char* NothingModified = "Nothing to analyze - no modified files were found.\n";

    IncrementalTest() {
        sandbox.Write("common.h", "int common;\n");
        sandbox.Write("inner.h", "int inner;\n");
        sandbox.Write("outer.h", "#include \"inner.h\"\n");
        AddSource("a.c", "#include \"common.h\"\n#include \"outer.h\"\nint a;\n");
        AddSource("b.c", "#include \"common.h\"\nint b;\n");
        AddSource("c.c", "int c;\n");
    }

    void AddSource(const std::string& name, const std::string& text, const Arguments& arguments = {}) {
        sandbox.AddUnit(name, {}, arguments);
        sandbox.Write(name, text);
    }

    RunResult Incremental(const Arguments& more = {}) {
        sandbox.ForgetCoreCalls();
        Arguments options = {"-i", "-o", "report.json"};
        options.insert(options.end(), more.begin(), more.end());
        return sandbox.Analyze(options);
    }

    /// The names of the sources that the last run analyzed.
    [[nodiscard]] std::vector<std::string> Analyzed() const {
        std::vector<std::string> names;
        for (const std::string& path : sandbox.AnalyzedSources()) {
            names.emplace_back(FileNameOf(path));
        }
        return names;
    }

    /// The names of the sources whose dependencies the last run listed.
    [[nodiscard]] std::vector<std::string> Listed() const {
        std::vector<std::string> names;
        for (const CoreCall& call : sandbox.CoreCalls()) {
            if (call.arguments.back() == "--skip-analysis") {
                names.emplace_back(FileNameOf(call.Setting("source-file")));
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /// A report equals that of a full run by somebody who has never run before.
    void ExpectReportOfCleanRun() {
        EXPECT_EQ(sandbox.Analyze({"-q", "-o", "clean/report.json"}).exitCode, 0);
        EXPECT_EQ(sandbox.Read("report.json"), sandbox.Read("clean/report.json"));
    }

    [[nodiscard]] nlohmann::json DependencyInfo() const {
        return nlohmann::json::parse(sandbox.Read(".Orvanta/depend_info.json"));
    }

    void MakeCleanFolder() const { sandbox.Write("clean/.keep", ""); }
};

using Names = std::vector<std::string>;

} // namespace Orvanta
