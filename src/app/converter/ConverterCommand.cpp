#include "app/converter/ConverterCommand.h"

#include "app/ProgramText.h"
#include "app/TopLevel.h"
#include "app/Version.h"
#include "platform/Console.h"
#include "platform/CrashHandler.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/StopFlag.h"
#include "platform/Text.h"
#include "render/LogParserWorker.h"
#include "report/Exceptions.h"
#include "report/WholeFile.h"

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

// All values are taken as words: they are read where a wrong one can be told of by its option's name.
using StringFlag = args::ValueFlag<std::string>;
using StringListFlag = args::ValueFlagList<std::string>;

// For the help: from the table of forms, so that none is left out.
std::string KnownTypes() {
    std::string names;
    for (const RenderType& type : AllRenderTypes()) {
        names += (names.empty() ? "" : ", ") + std::string(type.name);
    }
    return names;
}

/// The options, in the order of the help.
struct Options {
    explicit Options(args::ArgumentParser& parser)
        : types(parser, "TYPE", "Form to render: " + KnownTypes() + ". Can be specified multiple times.",
                {'t', "render-types"}),
          output(parser, "PATH",
                 "File to write, or - for standard output; a folder for the files when it names one, and with several "
                 "forms",
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
          base(parser, "FILE", "Leave out what this suppression base holds", {'s', "suppress-file"}),
          keepSuppressed(parser, "keep-suppressed",
                         "Keep what the base holds, and false alarms, and mark them as suppressed, in the form sarif",
                         {"keep-suppressed"}),
          earlier(parser, "OLD", "Leave out what the report OLD holds too, and count what is gone", {"diff"}),
          failOn(parser, "TYPES",
                 "End with exit code 2 when a finding that is shown is one of these analyzers and levels, such as "
                 "'GA:1;64'; 'all' is any finding",
                 {"fail-on"}),
          root(parser, "DIR",
               "Root of the source tree: put in the place of \"|?|\", and what paths are relative to where a form "
               "wants that",
               {'r', "sourcetree-root"}),
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
          reports(parser, "Orvanta log", "Reports to read, - for standard input; what several hold is written once",
                  args::Options::Required) {
        analyzers.HelpDefault("all");
        output.HelpDefault("the current folder");
    }

    StringListFlag types;
    StringFlag output;
    StringFlag analyzers;
    StringListFlag codes;
    StringListFlag words;
    StringListFlag paths;
    StringFlag base;
    args::Flag keepSuppressed;
    StringFlag earlier;
    StringFlag failOn;
    StringFlag root;
    StringFlag categories;
    StringListFlag standards;
    StringFlag checked;
    args::Flag deviations;
    args::Flag noLink;
    args::PositionalList<std::string> reports;
};

// Empty parts, as trailing separators leave them, are no codes.
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

// An empty name is the current folder.
void RequireFolder(const std::string& folder) {
    if (!folder.empty() && !Orvanta::IsDirectory(folder)) {
        throw FilesystemException("Couldn't create directory: " + folder);
    }
}

// By what the files are: a link to a report is the report. A terminal may be both.
void RequireNoReport(const std::string& path, const std::vector<std::string>& reports) {
    for (const std::string& report : reports) {
        if (Orvanta::IsSameFile(path, report) && Orvanta::IsRegularFile(path)) {
            throw ConfigException("The output would replace the report it is made from: " + report);
        }
    }
}

// Where each form goes. One that is asked for twice is written once; all places are checked before a report is read.
std::vector<RenderTarget> MakeTargets(const std::vector<std::string>& types, const std::string& output,
                                      const std::vector<std::string>& reports) {
    std::vector<RenderTarget> targets;
    for (const std::string& name : types) {
        const RenderType& type = RenderTypeNamed(name);
        // By address: there is one row for each form.
        const auto isSame = [&type](const RenderTarget& target) {
            return target.type == &type;
        };
        if (std::none_of(targets.begin(), targets.end(), isSame)) {
            targets.push_back({&type, output});
        }
    }
    // Nothing to write: whether places exist does not matter.
    if (targets.empty()) {
        return targets;
    }
    if (output == StandardStreamPath) {
        if (targets.size() > 1) {
            throw ConfigException("Standard output takes one form, not " + std::to_string(targets.size()),
                                  "Give a folder with -o, or ask for one form");
        }
        targets.front().path = output;
        return targets;
    }
    // Several forms need several files, which only a folder holds.
    const bool isFolder = targets.size() > 1 || output.empty() || Orvanta::IsDirectory(output);
    RequireFolder(isFolder ? output : std::string(DirectoryOf(output)));
    for (RenderTarget& target : targets) {
        if (isFolder) {
            const std::string_view first = reports.front();
            // Of the first report: several that are merged are named after it.
            const std::string stem(first == StandardStreamPath ? "report" : Orvanta::StemOf(first));
            target.path = JoinPath(output, stem + std::string(target.type->suffix));
        }
        RequireNoReport(target.path, reports);
    }
    return targets;
}

// All that can be wrong with the options is found here, before a report is read.
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
    settings.render.sourceRoot = options.root.Get();
    settings.render.namesSourceRoot = options.root.Matched();
    settings.render.programVersion = Orvanta::Version;
    settings.suppressBase = options.base.Get();
    settings.keepsSuppressed = options.keepSuppressed.Matched();
    // Without a base, nothing would be marked, and nobody would know why.
    if (settings.keepsSuppressed && settings.suppressBase.empty()) {
        throw ConfigException("--keep-suppressed needs a suppression base", "Name it with --suppress-file FILE");
    }
    settings.earlierReport = options.earlier.Get();
    if (options.failOn.Matched()) {
        settings.gate.emplace(options.failOn.Get());
    }
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
        throw Orvanta::PrintRequest(std::string(ProgramName) + " " + Orvanta::Version + "\n");
    });
    const Orvanta::TextOptions texts(parser);
    const args::CompletionFlag completion(parser, {"complete"});
    Options options(parser);
    return Orvanta::ParseAndRun(parser, argumentCount, arguments, [&options] {
        LogParserSettings settings = MakeSettings(options);
        Orvanta::MakeRoomFor(options.output.Get()); // what the options ask for is possible: from here on it is a report
        LogParserWorker worker(std::move(settings), Orvanta::ProcessStopFlag());
        worker.Run();
        // Only after everything is written: the gate says what the reports hold, and takes nothing from them.
        if (worker.GateMatches() > 0) {
            throw Orvanta::ZelmRcException(GateExitCode);
        }
    });
}

} // namespace OrvlogConverter
