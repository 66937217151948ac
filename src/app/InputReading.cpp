#include "app/InputReading.h"

#include "analysis/RunSummary.h"
#include "app/RunSetup.h"
#include "buildinput/CommandStringSplitter.h"
#include "buildinput/InvocationCollector.h"
#include "buildinput/ProgramName.h"
#include "buildinput/SourceList.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

// The command that compiles one file: the named compiler, else the system's for the file's language.
std::vector<std::string> SingleFileCommand(const AnalyzeOptions& options) {
    const std::string& source = *options.sourceFile;
    std::vector<std::string> command;
    // With a source file, the option names the compiler; it filters nothing.
    if (!options.compilers.empty()) {
        command.push_back(options.compilers.front());
    } else {
        command.emplace_back(ExtensionOf(source) == ".c" ? "cc" : "c++");
    }
    if (options.compilerParameters) {
        // A first word has rules of its own on Windows, so they are not the first. The word behind them is a word of
        // its own unless a quote is left open: then it would be the file's name.
        std::vector<std::string> parameters =
            SplitCommandString(". " + *options.compilerParameters + " .", HostCommandStringRules());
        if (parameters.size() < 2 || parameters.back() != ".") {
            throw ZelmException("Wrong value of --cl-params: \"" + *options.compilerParameters +
                                "\", a quote is not closed");
        }
        parameters.pop_back();
        command.insert(command.end(), parameters.begin() + 1, parameters.end());
    }
    command.insert(command.end(), {"-c", source});
    return command;
}

// What became of invocations that give no unit; which ones, only in the verbose log.
void TellSkipped(const CollectedCommands& commands, Log& log) {
    // Told also without the verbose log: otherwise nobody would know why these are missing from the report.
    const auto launchers = std::count_if(commands.skipped.begin(), commands.skipped.end(), [](const auto& skipped) {
        return skipped.fate == InvocationFate::SkippedLauncher;
    });
    if (launchers > 0) {
        log.Line(std::to_string(launchers) +
                 " compiler invocations are skipped because they go through ccache: use --ignore-ccache to analyze "
                 "them.");
    }
    if (!log.IsVerbose()) {
        return;
    }
    for (const SkippedInvocation& skipped : commands.skipped) {
        log.VerboseLine("  " + std::string(IsFailure(skipped.fate) ? "Failed" : "Skipped") + ": invocation " +
                        std::to_string(skipped.invocation) + " (" + skipped.what + "): " + skipped.reason);
    }
}

} // namespace

void AddSingleFile(const AnalyzeOptions& options, InvocationCollector& collector) {
    collector.AddInvocation(SingleFileCommand(options), CurrentDirectory(), {});
}

std::string ExistingInput(const AnalyzeOptions& options) {
    std::string path = BuildInputOf(options);
    if (PathExists(path)) {
        return path;
    }
    // Where builds mostly put it: only told, as another build's database may lie there.
    for (const char* const folder : {"build", "out", "builddir", "cmake-build-debug", "cmake-build-release"}) {
        const std::string other = JoinPath(folder, DefaultInput);
        if (PathExists(other)) {
            std::string hint = other;
            hint += " exists: -f ";
            hint += other;
            throw ZelmException("Couldn't open file " + path, hint);
        }
    }
    throw ZelmException("Couldn't open file " + path,
                        "Have the build make a database (cmake -DCMAKE_EXPORT_COMPILE_COMMANDS=ON) or a trace "
                        "(strace), and name it with -f FILE");
}

std::optional<std::vector<ListedFile>> ReadListedFiles(const AnalyzeOptions& options, Log& log) {
    if (!options.sourceList && !options.dependencyFile) {
        return std::nullopt;
    }
    // Of both options: the same word means the same file in both.
    const std::vector<std::string> folders = FoldersOfLists();
    std::vector<ListedFile> files;
    if (options.sourceList) {
        log.Line("Using source list file: " + *options.sourceList);
        files = ReadSourceList(*options.sourceList, folders);
        if (files.empty() && !options.allowEmpty) {
            throw ZelmException("The list of source files is empty.", "Use --allow-empty when that is no error");
        }
    }
    if (options.dependencyFile) {
        files.push_back(FileInFolders(*options.dependencyFile, folders));
    }
    return files;
}

std::vector<std::string> UnusedExclusions(std::span<const std::string> values,
                                          const std::vector<CompileCommand>& units) {
    struct Exclusion {
        std::string value;
        ExclusionSet paths;
    };

    std::vector<Exclusion> unused;
    ExclusionSet all;
    for (const std::string& value : values) {
        unused.push_back({value, ExclusionSet()});
        unused.back().paths.Add(PathOrMask(value));
        all.Add(PathOrMask(value));
    }
    for (auto unit = units.begin(); unit != units.end() && !unused.empty(); ++unit) {
        // One look for the many that none of them matches.
        if (const std::string path = SourcePath(*unit); all.Matches(path)) {
            std::erase_if(unused, [&path](const Exclusion& exclusion) { return exclusion.paths.Matches(path); });
        }
    }
    std::vector<std::string> left(unused.size());
    std::transform(unused.begin(), unused.end(), left.begin(),
                   [](Exclusion& exclusion) { return std::move(exclusion.value); });
    return left;
}

std::vector<std::string> UnmatchedCompilers(const std::vector<std::string>& names, const CollectedCommands& commands) {
    std::vector<std::string> unmatched;
    std::copy_if(names.begin(), names.end(), std::back_inserter(unmatched), [&commands](const std::string& name) {
        return std::none_of(commands.units.begin(), commands.units.end(), [&name](const CompileCommand& unit) {
            return IsProgramNamed(unit.arguments[0], name) || (unit.wrapped && IsProgramNamed("ccache", name));
        });
    });
    return unmatched;
}

CollectedCommands ReadInput(const AnalyzeOptions& options, const RunSettings& settings,
                            const CompilerRegistry& registry, Log& log, const StopFlag& stop) {
    CompilerIdentifier identifier(settings, log, stop);
    InvocationCollector collector(settings, registry, identifier, log);
    if (options.sourceFile) {
        AddSingleFile(options, collector);
    } else {
        ReadBuildInput(ExistingInput(options), collector);
    }
    CollectedCommands commands = collector.Take();
    TellSkipped(commands, log);
    if (!options.sourceFile) { // with which the option filters nothing
        // A name with a slip in it would leave a compiler's files out in silence, where another name lets some in.
        for (const std::string& name : UnmatchedCompilers(options.compilers, commands)) {
            log.Line("-C " + name + ": this compiler compiles no source file of the input");
        }
    }
    // A misspelt folder would be analyzed in silence.
    for (const std::string& value : UnusedExclusions(options.excludePaths, commands.units)) {
        log.Line("Warning: no source file of the build is left out by --exclude-path " + value);
    }
    return commands;
}

bool HasFailedInvocation(std::span<const SkippedInvocation> skipped) {
    return std::any_of(skipped.begin(), skipped.end(),
                       [](const SkippedInvocation& invocation) { return IsFailure(invocation.fate); });
}

} // namespace Orvanta
