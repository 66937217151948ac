#include "app/Entry.h"

#include "analysis/AnalyzerRunner.h"
#include "app/AnalyzeCommand.h"
#include "app/ReportCommands.h"
#include "app/Version.h"
#include "buildinput/BuildInput.h"
#include "platform/Console.h"
#include "platform/CrashHandler.h"
#include "platform/Exceptions.h"
#include "platform/StopFlag.h"
#include "report/Exceptions.h"

#include <args.hxx>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

namespace {

constexpr const char* ProgramName = "orvanta-analyzer";
constexpr const char* Description =
    "Compiler commands monitoring and analyzer tool.\n\n"
    "Orvanta is a static analyzer for C and C++. This tool learns from a build how each source file is compiled, "
    "preprocesses the files with the project's own compilers, has the core analyzer look at them and gathers what it "
    "finds into one report.";
constexpr std::string_view RemovedWords = " monitoring and";
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

/// The user asks for the version; only RunProgram catches it.
class VersionRequest : public std::exception {};

std::string WithoutRemovedWords(std::string text) {
    for (std::size_t at = text.find(RemovedWords); at != std::string::npos; at = text.find(RemovedWords, at)) {
        text.erase(at, RemovedWords.size());
    }
    return text;
}

void Print(std::string_view text) {
    WriteToStandardOutput(text);
}

void PrintLine(std::string text) {
    Print(text += '\n');
}

void PrintHelp(const args::ArgumentParser& parser) {
    std::ostringstream text;
    text << parser;
    Print(text.str());
}

void SetUpParser(args::ArgumentParser& parser) {
    parser.Prog(WithoutRemovedWords(ProgramName));
    parser.Description(WithoutRemovedWords(Description));
    parser.Epilog(Epilog);
    parser.helpParams.usageString = "Usage:";
    parser.helpParams.optionsString = "Options:";
    parser.helpParams.proglineOptions = "{OPTIONS}";
    parser.helpParams.addDefault = true;
    parser.helpParams.addChoices = true;
}

void Parse(args::ArgumentParser& parser, int argumentCount, const char* const* arguments) {
    if (argumentCount < 1) {
        parser.ParseArgs(std::vector<std::string>{});
    } else {
        parser.ParseArgs(std::vector<std::string>(arguments + 1, arguments + argumentCount));
    }
}

void PrintNoInvocations(const NoCompilerInvocationsFound& error) {
    std::string text = "No compiler invocations were detected.";
    if (error.HintForUser() == NoCompilerInvocationsFound::Hint::NameTheCompiler) {
        text += " Consider specifying the compiler name with the '-C' argument.";
    }
    PrintLine(text);
}

// A more derived type stands before its base.
int ParseAndRun(args::ArgumentParser& parser, int argumentCount, const char* const* arguments) {
    try {
        Parse(parser, argumentCount, arguments);
        return 0;
    } catch (const args::Completion& completion) {
        Print(completion.what());
        return 0;
    } catch (const args::Help&) {
        PrintHelp(parser);
        return 0;
    } catch (const VersionRequest&) {
        PrintLine(std::string(ProgramName) + " " + Version);
        return 0;
    } catch (const args::Error& error) {
        PrintLine(error.what());
        PrintHelp(parser);
    } catch (const OrvlogConverter::FilesystemException& error) {
        PrintLine(std::string("Error: ") + error.what());
    } catch (const NoCompilationCommandsToRun& error) {
        PrintLine(error.what());
    } catch (const NoCompilerInvocationsFound& error) {
        PrintNoInvocations(error);
    } catch (const ZelmRcException& error) {
        return error.ReturnCode();
    } catch (const ZelmException& error) {
        PrintLine(std::string("Error: ") + error.what());
    } catch (const std::exception& error) {
        PrintLine(std::string("Unexpected exception was thrown: ") + error.what());
    }
    return 1;
}

} // namespace

int RunProgram(int argumentCount, const char* const* arguments) {
    InstallCrashHandler();
    InstallInterruptHandler(ProcessStopFlag());

    args::ArgumentParser parser("");
    SetUpParser(parser);
    const args::HelpFlag help(parser, "help", "Show help page", {'h', "help"}, args::Options::Global);
    const args::ActionFlag version(parser, "version", "Show the program's version", {"version"},
                                   [] { throw VersionRequest(); });
    const args::CompletionFlag completion(parser, {"complete"});
    args::Command analyze(parser, "analyze", "Launch Orvanta for your project", AnalyzeCommand);
    analyze.Epilog(Epilog);
    const args::Command suppress(parser, "suppress",
                                 "Add analyzer messages to suppression file which can be used to hide analyzer "
                                 "messages on subsequent analyzer runs",
                                 SuppressCommand);
    const args::Command filterSuppressed(parser, "filter-suppressed", "Filter analyzer log based on suppression file",
                                         FilterSuppressedCommand);
    return ParseAndRun(parser, argumentCount, arguments);
}

} // namespace Orvanta
