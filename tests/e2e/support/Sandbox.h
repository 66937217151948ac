#pragma once

#include "platform/Process.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

/// One entry of a compilation database.
struct Entry {
    Arguments arguments;
    std::string directory = {}; ///< empty: the sandbox's root
    Environment environment = {};
};

/// How a run of the driver ended.
struct RunResult {
    int exitCode = 0;
    std::string output; ///< standard output
    std::string errors; ///< standard error

    [[nodiscard]] bool Says(std::string_view text) const { return output.find(text) != std::string::npos; }

    [[nodiscard]] std::size_t Count(std::string_view text) const;
    [[nodiscard]] std::vector<std::string> Lines() const;
};

std::ostream& operator<<(std::ostream& stream, const RunResult& result);

/// How the fake core was called for one unit.
struct CoreCall {
    Arguments arguments;
    std::string directory;
    std::vector<std::pair<std::string, std::string>> settings; ///< in the file's order
    std::string preprocessed;

    [[nodiscard]] std::string Setting(std::string_view key) const;
    [[nodiscard]] std::vector<std::string> Keys() const;
};

/// A run of the driver that a test watches. Its destructor kills it.
class RunningDriver {
public:
    RunningDriver(const Arguments& command, const std::string& directory, const Environment& environment);

    /// Asks the driver to end as a user or a system would.
    void AskToEnd() { process_.kill(); }

    /// Ends it without giving it a chance.
    void Kill() { process_.kill(true); }

    /// Returns when the driver has ended; one that takes 90 seconds is killed, and the test fails.
    RunResult Wait();

private:
    RunResult result_;
    Process process_;
};

/// A folder of its own for one test: a project, its database, the tools and what runs leave. It is kept, and named,
/// when the test fails.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    /// The absolute path of a file in the sandbox; "" is the root.
    [[nodiscard]] std::string Path(std::string_view relative = "") const;
    /// Writes a file, with the folders on the way to it.
    void Write(std::string_view relative, std::string_view text) const;
    [[nodiscard]] std::string Read(std::string_view relative) const;
    [[nodiscard]] bool Exists(std::string_view relative) const;

    /// Copies the fake compiler to tools/NAME; returns its path.
    std::string AddCompiler(const std::string& name, std::string_view versionText, std::string_view script = "") const;
    /// The number of calls of a fake compiler that hold `text`.
    [[nodiscard]] std::size_t CompilerCalls(const std::string& name, std::string_view text = "") const;

    /// Writes a source, with the steps that the fake core plays for it, and adds an entry that compiles it with a fake
    /// compiler, in the root. Without steps the core makes one finding.
    void AddUnit(const std::string& source, const std::vector<std::string>& script = {},
                 const Arguments& extraArguments = {});

    void AddEntry(Entry entry) { entries_.push_back(std::move(entry)); }

    void ForgetEntries() { entries_.clear(); }

    void WriteScript(const std::string& source, const std::vector<std::string>& steps) const;
    /// Writes the entries added as compile_commands.json; the functions below do so themselves.
    void WriteDatabase() const;

    /// Runs the driver in the sandbox's root until it ends.
    RunResult Run(const Arguments& arguments) const;
    /// Runs `analyze` on the project with the fake core.
    RunResult Analyze(const Arguments& options = {}) const;
    [[nodiscard]] std::unique_ptr<RunningDriver> StartAnalyze(const Arguments& options = {}) const;

    /// The words that run `analyze` with the fake core.
    [[nodiscard]] static Arguments AnalyzeCommand(const Arguments& options);
    /// The driver's own environment, with its temporary files and the core's records in the sandbox.
    [[nodiscard]] Environment DriverEnvironment() const;

    /// A variable for all runs to come.
    void SetVariable(const std::string& name, const std::string& value) { changes_[name] = value; }

    /// The calls of the fake core in all runs so far, by the name of the unit's source.
    [[nodiscard]] std::vector<CoreCall> CoreCalls() const;
    /// The sources of those calls that analyzed a unit: not the listings, nor the stages before the last.
    [[nodiscard]] std::vector<std::string> AnalyzedSources() const;
    void ForgetCoreCalls() const;
    /// What runs have left in the folder for temporary files, lock files excepted.
    [[nodiscard]] std::vector<std::string> Leftovers() const;
    /// Whether a fake that hung under this key still lives.
    [[nodiscard]] bool IsAlive(const std::string& key) const;

private:
    std::string root_;
    std::vector<Entry> entries_;
    Environment changes_;
};

/// Looks again and again until the condition holds; false when it doesn't within 20 seconds.
[[nodiscard]] bool HoldsSoon(const std::function<bool()>& condition);

/// The programs under test: those of this build, or of the build folder that ORVANTA_TESTED_BUILD names, which may have
/// been made with sanitizers.
[[nodiscard]] std::string DriverProgram();
[[nodiscard]] std::string ConverterProgram();
/// The fake, always of this build.
[[nodiscard]] std::string FakeCoreProgram();

} // namespace Orvanta
