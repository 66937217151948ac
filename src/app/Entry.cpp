#include "app/Entry.h"

#include "app/AnalyzeCommand.h"
#include "app/CacheCommand.h"
#include "app/FilterSuppressedCommand.h"
#include "app/MergeCommand.h"
#include "app/ProgramText.h"
#include "app/SuppressCommand.h"
#include "app/TopLevel.h"
#include "app/Version.h"
#include "app/inspect/DoctorCommand.h"
#include "app/inspect/ExplainCommand.h"
#include "app/inspect/VerifyCommand.h"
#include "platform/ChildWatch.h"
#include "platform/Console.h"
#include "platform/CrashHandler.h"
#include "platform/StopFlag.h"

#include <args.hxx>

#include <optional>
#include <string>

namespace Orvanta {

namespace {

constexpr const char* ProgramName = "orvanta-analyzer";
constexpr const char* Description =
    "Compiler commands analyzer tool.\n\n"
    "Orvanta is a static analyzer for C and C++. This tool learns from a build how each source file is compiled, "
    "preprocesses the files with the project's own compilers, has the core analyzer look at them and gathers what it "
    "finds into one report.";
constexpr const char* Epilog = "\n"
                               "The OrvantaDriver utility defines several non-zero exit codes,\n"
                               "which do not necessarily indicate some issue with the operation of the\n"
                               "tool itself. The exit code represents a state that occurred during the \n"
                               "OrvantaDriver utility operation. Possible exit codes are:\n"
                               "  0 - Analysis was successfully completed, no issues\n"
                               "      were found in the source code;\n"
                               "\n"
                               "  1 - Error (crash) during analysis of some source file(s);\n"
                               "\n";

// The words of the program's own help.
void SetUpParser(args::ArgumentParser& parser) {
    parser.Prog(ProgramName);
    parser.Description(Description);
    parser.Epilog(Epilog);
    SetHelpWords(parser);
}

} // namespace

int RunProgram(int argumentCount, const char* const* arguments) {
    if (const std::optional<int> code = WatchIfAsked(argumentCount, arguments)) {
        return *code;
    }
    InstallCrashHandler();
    const ChildWatch watch;
    // Both before the first word is parsed, since subcommands run inside the parser.
    InstallInterruptHandler(ProcessStopFlag());

    args::ArgumentParser parser("");
    SetUpParser(parser);
    const args::HelpFlag help(parser, "help", "Show help page", {'h', "help"}, args::Options::Global);
    // Thrown out of the parser, which would otherwise ask for a subcommand.
    const args::ActionFlag version(parser, "version", "Show the program's version", {"version"},
                                   [] { throw PrintRequest(std::string(ProgramName) + " " + Version + "\n"); });
    const TextOptions texts(parser);
    const args::CompletionFlag completion(parser, {"complete"});
    args::Command analyze(parser, "analyze", "Launch Orvanta for your project", AnalyzeCommand);
    // The exit codes are those of this subcommand.
    analyze.Epilog(Epilog);
    const args::Command merge(parser, "merge", "Make one report of the parts that 'analyze --shard' has written",
                              MergeCommand);
    const args::Command suppress(parser, "suppress",
                                 "Add analyzer messages to suppression file which can be used to hide analyzer "
                                 "messages on subsequent analyzer runs",
                                 SuppressCommand);
    const args::Command filterSuppressed(parser, "filter-suppressed", "Filter analyzer log based on suppression file",
                                         FilterSuppressedCommand);
    const args::Command explain(parser, "explain",
                                "Show how a file's compiler commands are read, and what a run does with them",
                                ExplainCommand);
    const args::Command doctor(parser, "doctor", "Tell what would go wrong in a run, before it begins", DoctorCommand);
    const args::Command verify(parser, "verify", "Compare what is preprocessed with what the build's own commands give",
                               VerifyCommand);
    const args::Command cache(parser, "cache", "Show, check, trim or empty a cache of results", CacheCommand);
    return ParseAndRun(parser, argumentCount, arguments);
}

} // namespace Orvanta
