#include "app/converter/ConverterCommand.h"

#include "app/TopLevel.h"
#include "app/Version.h"
#include "platform/Console.h"
#include "platform/CrashHandler.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "platform/Text.h"
#include "render/LogParserWorker.h"
#include "report/Exceptions.h"

#include <args.hxx>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvlogConverter {

namespace {

using Orvanta::DirectoryOf;
using Orvanta::JoinPath;

constexpr const char* ProgramName = "orvlog-converter";
constexpr const char* Description =
    "Orvanta report converter.\n\nReads reports of the analyzer, leaves out what is not wanted and writes the rest in "
    "other forms.";

using StringFlag = args::ValueFlag<std::string>;
using StringListFlag = args::ValueFlagList<std::string>;

/// The options, in the order of the help.
struct Options {
    explicit Options(args::ArgumentParser& parser)
        : types(parser, "TYPE", "Form to render: json, raw or misra. Can be specified multiple times.",
                {'t', "render-types"}),
          output(parser, "PATH", "File to write; a folder for the files when it names one, and with several forms",
                 {'o', "output"}),
          analyzers(parser, "TYPES", "Analyzers and levels to keep, such as 'GA:1,2;64:1;OP:1,2,3;CS:1;MISRA:1,2'",
                    {'a', "analyzer"}, "all"),
          codes(parser, "CODES", "Codes to leave out, such as 'V501,V502'. Can be specified multiple times.",
                {'d', "excluded-codes"}),
          words(parser, "WORD", "Leave out messages about lines that hold this word. Can be specified multiple times.",
                {'w', "excluded-word"}),
          paths(parser, "TEXT",
                "Leave out messages about files with this text in their path. Can be specified multiple times.",
                {'e', "exclude-path"}),
          root(parser, "DIR", "Folder to put in the place of \"|?|\"", {'r', "sourcetree-root"}),
          categories(parser, "FILE", "File that re-categorises MISRA guidelines, for the form misra", {'g', "grp"}),
          standards(parser, "NAME",
                    "MISRA standard to judge by, such as 'C:2012' or 'C++:2023', for the form misra. Can be specified "
                    "once for each language.",
                    {"misra-standard"}),
          checked(parser, "FILE", "List of the MISRA guidelines that were checked, for the form misra",
                  {"misra-checked"}),
          deviations(parser, "misra_deviations",
                     "Count messages marked as false alarms as deviations, for the form misra",
                     {'m', "misra_deviations"}),
          noLink(parser, "no-help-messages", "Do not write the message that says where the warnings are described",
                 {'n', "no-help-messages"}),
          reports(parser, "Orvanta log", "Reports to read", args::Options::Required) {
        analyzers.HelpDefault("all");
        output.HelpDefault("the current folder");
    }

    StringListFlag types;
    StringFlag output;
    StringFlag analyzers;
    StringListFlag codes;
    StringListFlag words;
    StringListFlag paths;
    StringFlag root;
    StringFlag categories;
    StringListFlag standards;
    StringFlag checked;
    args::Flag deviations;
    args::Flag noLink;
    args::PositionalList<std::string> reports;
};

std::set<std::string, std::less<>> SplitCodes(const std::vector<std::string>& lists) {
    std::set<std::string, std::less<>> codes;
    for (std::string_view list : lists) {
        while (!list.empty()) {
            if (const std::string_view code = Orvanta::TakeUpTo(list, ",; "); !code.empty()) {
                codes.emplace(code);
            }
        }
    }
    return codes;
}

void RequireFolder(const std::string& folder) {
    if (!folder.empty() && !Orvanta::IsDirectory(folder)) {
        throw FilesystemException("Couldn't create directory: " + folder);
    }
}

void RequireNoReport(const std::string& path, const std::vector<std::string>& reports) {
    for (const std::string& report : reports) {
        if (Orvanta::IsSameFile(path, report) && Orvanta::IsRegularFile(path)) {
            throw ConfigException("The output would replace the report it is made from: " + report);
        }
    }
}

std::vector<RenderTarget> MakeTargets(const std::vector<std::string>& types, const std::string& output,
                                      const std::vector<std::string>& reports) {
    std::vector<RenderTarget> targets;
    for (const std::string& name : types) {
        const RenderType& type = RenderTypeNamed(name);
        const auto isSame = [&type](const RenderTarget& target) {
            return target.type == &type;
        };
        if (std::none_of(targets.begin(), targets.end(), isSame)) {
            targets.push_back({&type, output});
        }
    }
    if (targets.empty()) {
        return targets;
    }
    const bool isFolder = targets.size() > 1 || output.empty() || Orvanta::IsDirectory(output);
    RequireFolder(isFolder ? output : std::string(DirectoryOf(output)));
    for (RenderTarget& target : targets) {
        if (isFolder) {
            const std::string stem(Orvanta::StemOf(reports.front()));
            target.path = JoinPath(output, stem + std::string(target.type->suffix));
        }
        RequireNoReport(target.path, reports);
    }
    return targets;
}

LogParserSettings MakeSettings(Options& options) {
    LogParserSettings settings;
    settings.reports = options.reports.Get();
    settings.targets = MakeTargets(options.types.Get(), options.output.Get(), settings.reports);
    settings.filter.analyzers = ParseAnalyzerSpecification(options.analyzers.Get());
    settings.filter.disabledCodes = SplitCodes(options.codes.Get());
    settings.filter.excludedWords = {options.words.Get().begin(), options.words.Get().end()};
    settings.filter.excludedPaths = options.paths.Get();
    settings.sourceRoot = options.root.Get();
    if (options.noLink.Matched()) {
        settings.documentationLink = LogParserSettings::DocumentationLink::LeaveOut;
    }
    if (options.categories.Matched()) {
        settings.render.categoriesPath = options.categories.Get();
    }
    settings.render.misraStandards = options.standards.Get();
    if (options.checked.Matched()) {
        settings.render.misraChecked->ReadFile(options.checked.Get());
    }
    settings.render.countDeviations = options.deviations.Matched();
    return settings;
}

} // namespace

int RunConverter(int argumentCount, const char* const* arguments) {
    Orvanta::InstallCrashHandler();
    Orvanta::InstallInterruptHandler(Orvanta::ProcessStopFlag());

    args::ArgumentParser parser(Description);
    parser.Prog(ProgramName);
    Orvanta::SetHelpWords(parser);
    const args::HelpFlag help(parser, "help", "Show help page", {'h', "help"});
    const args::ActionFlag version(parser, "version", "Show the program's version", {"version"}, [] {
        throw Orvanta::VersionRequest(std::string(ProgramName) + " " + Orvanta::Version);
    });
    const args::CompletionFlag completion(parser, {"complete"});
    Options options(parser);
    return Orvanta::ParseAndRun(parser, argumentCount, arguments, [&options] {
        Orvanta::MakeRoomFor(options.output.Get());
        LogParserWorker(MakeSettings(options), Orvanta::ProcessStopFlag()).Run();
    });
}

} // namespace OrvlogConverter
