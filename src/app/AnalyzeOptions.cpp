#include "app/AnalyzeOptions.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <args.hxx>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

namespace Orvanta {

namespace {

constexpr const char* AnalysisModeHelp = "MODE defines the group of warnings that will be activated during analysis:\n"
                                         "64      - 64-bit errors;\n"
                                         "GA      - General Analysis;\n"
                                         "OP      - Micro-optimizations;\n"
                                         "CS      - Customers Specific Requests;\n"
                                         "MISRA   - MISRA guidelines;\n"
                                         "AUTOSAR - AUTOSAR guidelines;\n"
                                         "OWASP   - OWASP guidelines.\n"
                                         "Several types of warnings must be separated by ';', e.g. 'GA;OP;64'.";

// What an option fills in: the kind of field decides whether it takes a value, and how often.
using SwitchField = bool AnalyzeOptions::*;
using ValueField = std::optional<std::string> AnalyzeOptions::*;
using ListField = std::vector<std::string> AnalyzeOptions::*; // may be given several times

/// One option, in the order of the help. A row without a value name is a plain flag.
struct OptionRow {
    char shortName; // 0: none
    const char* longName;
    const char* valueName;
    const char* help;
    const char* shownDefault; // null: none
    const char* shownChoices; // null: none
    std::variant<SwitchField, ValueField, ListField> field;
};

using A = AnalyzeOptions;

// The help shows the rows of this table, in this order.
const OptionRow VisibleOptions[] = {
    {'j', "threads", "N", "Allow N Orvanta analyzers at once", nullptr, nullptr, &A::threads},
    {'i', "incremental", "", "Use incremental analysis", nullptr, nullptr, &A::incremental},
    {0, "resume", "", "Go on with a run that was interrupted: what it has finished is not analyzed again", nullptr,
     nullptr, &A::resume},
    {'o', "output-file", "FILE", "Place the analyzer's report into FILE", nullptr, nullptr, &A::outputFile},
    {'c', "cfg", "FILE", "Run Orvanta using config FILE", nullptr, nullptr, &A::settingsFile},
    {'s', "suppress-file", "FILE", "Path to suppress file", nullptr, nullptr, &A::suppressFile},
    {'q', "quiet", "", "Analysis progress is not displayed", nullptr, nullptr, &A::quiet},
    {0, "progress", "FORM",
     "How progress is shown on a terminal: 'status' is one line that changes, 'lines' one for each file", "both",
     "'status', 'lines', 'both'", &A::progress},
    {0, "verbose", "", "Tell what is done with every compiler invocation, and why", nullptr, nullptr, &A::verbose},
    {0, "show", "N", "Show the N worst findings at the end, 0 for none", "10", nullptr, &A::show},
    {0, "fail-on", "TYPES",
     "End with exit code 2 when a finding that is shown is one of these analyzers and levels, such as 'GA:1;64'; 'all' "
     "is any finding",
     nullptr, nullptr, &A::failOn},
    {0, "stats", "FILE", "Write what became of every file, and what it took, into FILE, one JSON object a line",
     nullptr, nullptr, &A::stats},
    {0, "shard", "K/N", "Analyze part K of N of the files and write it for 'merge'", nullptr, nullptr, &A::shard},
    {0, "costs", "FILE", "With --shard: what --stats has written, by which all parts take about as long", nullptr,
     nullptr, &A::costs},
    {'f', "file", "FILE", "Use trace output or compile commands database FILE", "compile_commands.json",
     "'compile_commands.json', 'strace_out'", &A::inputFile},
    {'S', "source-files", "FILE",
     "Allows to analyze a list of source files, taking into account compile dependencies. The list of files is "
     "plaintext, with every file on a separate line, absolute or relative paths.",
     nullptr, nullptr, &A::sourceList},
    {0, "allow-empty", "", "A list of source files of which nothing belongs to the build is no error", nullptr, nullptr,
     &A::allowEmpty},
    {'C', "compiler", "COMPILER_NAME", "Filter compiler commands by compiler name", nullptr, nullptr, &A::compilers},
    {0, "compiler-path", "DIR", "Start no compiler from outside DIR", nullptr, nullptr, &A::compilerFolders},
    {'E', "env", "VAR=VALUE", "Modify environment for preprocessor", nullptr, nullptr, &A::environment},
    {'e', "exclude-path", "PATH", "Directory whose files are not necessary to check", nullptr, nullptr,
     &A::excludePaths},
    {'a', "analysis-mode", "MODE", AnalysisModeHelp, "GA", nullptr, &A::analysisMode},
    {0, "engines", "NAMES", "Engines of the bundled core that look at the files, joined by ','", "those installed",
     "'cppcheck', 'clang'", &A::engines},
    {'r', "sourcetree-root", "DIR", "Replace absolute paths in report with relative paths", nullptr, nullptr,
     &A::sourceTreeRoot},
    {'p', "preprocessor", "NAME", "Preprocessor (gcc or clang)", "<auto-detected>", nullptr, &A::preprocessor},
    {0, "platform", "NAME", "Platform (linux64, linux32)", "linux64", nullptr, &A::platform},
    {0, "orvanta-path", "FILE", "Path to Orvanta", nullptr, nullptr, &A::corePath},
    {0, "timeout", "SECONDS", "Give up a file that takes longer", nullptr, nullptr, &A::timeout},
    {0, "max-output", "SIZE",
     "Give up a file whose compiler or analyzer writes more than SIZE bytes to standard output or standard error; "
     "K, M and G behind the number count",
     nullptr, nullptr, &A::maxOutput},
    {0, "max-memory", "SIZE",
     "Analyze no more files at once than fit into SIZE bytes; K, M and G behind the number count", nullptr, nullptr,
     &A::maxMemory},
    {0, "launcher", "WORDS",
     "Have each compiler and core started by the program that WORDS begin with, such as 'srun -n1 --exclusive'; needs "
     "--shared",
     nullptr, nullptr, &A::launcher},
    {0, "shared", "DIR",
     "Folder that all machines of a run see; holds the files of --launcher and --intermodular-stage", nullptr, nullptr,
     &A::shared},
    {0, "bundle", "DIR",
     "Write what lets a file that fails be analyzed again elsewhere, without project and compiler, into a folder in "
     "DIR",
     nullptr, nullptr, &A::bundle},
    {0, "bundle-slow", "SECONDS", "With --bundle: also for a file that takes longer", nullptr, nullptr, &A::bundleSlow},
    {0, "bundle-unit", "FILE", "With --bundle: also for this source file, whatever becomes of it", nullptr, nullptr,
     &A::bundleSources},
    {0, "scrub", "", "With --bundle: replace paths and comments", nullptr, nullptr, &A::scrub},
    {0, "cache", "DIR",
     "Keep results in DIR, or at an address that begins with http, and analyze no file whose result "
     "is there",
     nullptr, nullptr, &A::cachePlace},
    {0, "cache-token-file", "FILE", "File with the token for the server of the cache", nullptr, nullptr,
     &A::cacheTokenFile},
    {0, "cache-readonly", "", "Use the results in the cache and keep no new ones", nullptr, nullptr, &A::cacheReadOnly},
    {0, "cache-size", "SIZE", "Largest size of the cache; K, M and G behind the number count", "5G", nullptr,
     &A::cacheSize},
    {'R', "rules-config", "FILE", "Path to the diagnostic configuration file (.orvconfig)", nullptr, nullptr,
     &A::rulesConfig},
    {0, "ignore-ccache", "",
     "Enables the analysis of all source files ignoring the current ccache state. Even if ccache decides that compiler "
     "should not run, the analyzer will still analyze the corresponding source files.",
     nullptr, nullptr, &A::ignoreCcache},
    {0, "analyze-specified-system-paths", "",
     "Enables the analysis of files inside directories specified by the following compiler flags: 'isystem', "
     "'isysroot', 'system_include_dir' etc.",
     nullptr, nullptr, &A::analyzeSystemPaths},
    {0, "intermodular", "", "Enable intermodular analysis", nullptr, nullptr, &A::intermodular},
    {0, "intermodular-stage", "STAGE", "Run one stage of the intermodular analysis; needs --shared", nullptr,
     "'collect', 'link', 'perform'", &A::intermodularStage},
    {0, "regenerate-depend-info", "OPTION",
     "Regenerates compilation dependency information for each source file and saves it into depend_info.json.\n"
     "skip-analysis - performs regeneration without starting the analysis;\n"
     "run-analysis - performs regeneration and starts the analysis.",
     nullptr, nullptr, &A::regenerateDependInfo},
};

const OptionRow HiddenOptions[] = {
    {'I', "include-dir", "DIR", "", nullptr, nullptr, &A::includeDirectories},
    {0, "cl-params", "PARAMETERS", "", nullptr, nullptr, &A::compilerParameters},
    {0, "source-file", "FILE", "", nullptr, nullptr, &A::sourceFile},
    {0, "dump-json", "FILE", "", nullptr, nullptr, &A::dumpJson},
    {0, "dump-log", "FILE", "", nullptr, nullptr, &A::dumpLog},
    {0, "dump-files", "", "", nullptr, nullptr, &A::dumpFiles},
    {0, "analyze-only", "MASK", "", nullptr, nullptr, &A::analyzeOnly},
    {0, "dep-file", "FILE", "", nullptr, nullptr, &A::dependencyFile},
    {0, "print-stdout", "", "", nullptr, nullptr, &A::printStdout},
    {0, "trace-dir", "DIR", "", nullptr, nullptr, &A::traceDirectory},
};

// The names under which a row is found on the command line.
args::Matcher MatcherOf(const OptionRow& row) {
    return row.shortName == 0 ? args::Matcher{std::string(row.longName)}
                              : args::Matcher{row.shortName, std::string(row.longName)};
}

/// The parser library's flags of the rows, and the way from them into the record.
class OptionReader {
public:
    explicit OptionReader(args::Subparser& parser) : parser_(parser) {}

    // Declares the rows on the parser in their order, which is that of the help.
    template <std::size_t Size>
    void Declare(const OptionRow (&rows)[Size], args::Options visibility) {
        for (const OptionRow& row : rows) {
            std::visit([&](auto field) { DeclareRow(row, visibility, field); }, row.field);
        }
    }

    // The same for the rows with these long names.
    template <std::size_t Size>
    void DeclareNamed(const OptionRow (&rows)[Size], args::Options visibility,
                      std::span<const std::string_view> names) {
        for (const OptionRow& row : rows) {
            if (std::find(names.begin(), names.end(), row.longName) != names.end()) {
                std::visit([&](auto field) { DeclareRow(row, visibility, field); }, row.field);
            }
        }
    }

    // After the parsing: what was not given leaves the record as it is.
    void StoreInto(AnalyzeOptions& options) const {
        for (const auto& store : stores_) {
            store(options);
        }
    }

private:
    // One for each kind of field: the parser library has a class of flags for each.
    void DeclareRow(const OptionRow& row, args::Options visibility, SwitchField field) {
        auto flag = std::make_shared<args::Flag>(parser_, row.longName, row.help, MatcherOf(row), visibility);
        stores_.emplace_back([flag, field](AnalyzeOptions& options) { options.*field = flag->Matched(); });
    }

    void DeclareRow(const OptionRow& row, args::Options visibility, ValueField field) {
        using Flag = args::ValueFlag<std::string>;
        auto flag = std::make_shared<Flag>(parser_, row.valueName, row.help, MatcherOf(row), visibility);
        // Only shown: an option that was not given has no value, so that a settings file's counts.
        if (row.shownDefault != nullptr) {
            flag->HelpDefault(row.shownDefault);
        }
        if (row.shownChoices != nullptr) {
            flag->HelpChoices({row.shownChoices});
        }
        stores_.emplace_back([flag, field](AnalyzeOptions& options) {
            if (flag->Matched()) {
                options.*field = flag->Get();
            }
        });
    }

    void DeclareRow(const OptionRow& row, args::Options visibility, ListField field) {
        using Flag = args::ValueFlagList<std::string>;
        auto flag = std::make_shared<Flag>(parser_, row.valueName, row.help, MatcherOf(row), std::vector<std::string>{},
                                           visibility);
        stores_.emplace_back([flag, field](AnalyzeOptions& options) { options.*field = flag->Get(); });
    }

    args::Subparser& parser_;
    std::vector<std::function<void(AnalyzeOptions&)>> stores_; // each keeps its flag alive
};

// "64K" and the like; absent for what is no such number, and for none at all.
std::optional<std::uint64_t> ByteCount(std::string_view text) {
    constexpr std::string_view Suffixes = "KMG"; // each 1024 of the one before
    constexpr unsigned BitsOfStep = 10;
    const std::size_t step = text.empty() ? std::string_view::npos : Suffixes.find(text.back());
    unsigned bits = 0;
    if (step != std::string_view::npos) {
        text.remove_suffix(1);
        bits = BitsOfStep * static_cast<unsigned>(step + 1);
    }
    const auto number = WholeNumber<std::uint32_t>(text); // large enough, and no product overflows
    return number && *number > 0 ? std::optional(std::uint64_t{*number} << bits) : std::nullopt;
}

// As the number of seconds that it is; absent when it was not given.
std::optional<std::chrono::seconds> SecondsOf(const std::optional<std::string>& value, const char* option) {
    if (!value) {
        return std::nullopt;
    }
    const auto seconds = WholeNumber<std::uint32_t>(*value);
    if (!seconds || *seconds == 0) {
        throw ZelmException(std::string("Wrong value of ") + option + ": \"" + *value +
                            "\", expected a number of 1 or more seconds");
    }
    return std::chrono::seconds(*seconds);
}

} // namespace

AnalyzeOptions ParseAnalyzeOptions(args::Subparser& parser) {
    OptionReader reader(parser);
    reader.Declare(VisibleOptions, args::Options::None);
    reader.Declare(HiddenOptions, args::Options::Hidden);
    parser.Parse();
    AnalyzeOptions options;
    reader.StoreInto(options);
    // Whatever is said of the whole holds for each of its stages.
    options.intermodular = options.intermodular || options.intermodularStage;
    return options;
}

AnalyzeOptions ParseSharedOptions(args::Subparser& parser, std::span<const std::string_view> names) {
    OptionReader reader(parser);
    reader.DeclareNamed(VisibleOptions, args::Options::None, names);
    reader.DeclareNamed(HiddenOptions, args::Options::Hidden, names);
    parser.Parse();
    AnalyzeOptions options;
    reader.StoreInto(options);
    return options;
}

std::optional<RegenerateDependInfoOption> RegenerationOf(const AnalyzeOptions& options) {
    const std::optional<std::string>& word = options.regenerateDependInfo;
    if (!word) {
        return std::nullopt;
    }
    if (*word == "skip-analysis") {
        return RegenerateDependInfoOption::SkipAnalysis;
    }
    if (*word == "run-analysis") {
        return RegenerateDependInfoOption::RunAnalysis;
    }
    throw ZelmException("Wrong value of --regenerate-depend-info: \"" + *word +
                        "\", expected \"skip-analysis\" or \"run-analysis\"");
}

ProgressForm ProgressFormOf(const AnalyzeOptions& options) {
    const std::string word = options.progress.value_or("both");
    if (word == "status") {
        return ProgressForm::Status;
    }
    if (word == "lines") {
        return ProgressForm::Lines;
    }
    if (word == "both") {
        return ProgressForm::Both;
    }
    throw ZelmException("Wrong value of --progress: \"" + word + "\", expected \"status\", \"lines\" or \"both\"");
}

std::string BuildInputOf(const AnalyzeOptions& options) {
    const std::string given = options.inputFile.value_or(DefaultInput);
    return LookAt(given).kind == PathKind::Folder ? JoinPath(given, DefaultInput) : given;
}

std::vector<std::optional<std::string>> NamedInputs(const AnalyzeOptions& options) {
    return {BuildInputOf(options), options.settingsFile,   options.sourceList,  options.suppressFile,
            options.sourceFile,    options.dependencyFile, options.rulesConfig, options.costs};
}

std::size_t FindingsToShow(const AnalyzeOptions& options) {
    constexpr std::size_t Default = 10;
    if (!options.show) {
        return Default;
    }
    const auto count = WholeNumber<std::size_t>(*options.show);
    if (!count) {
        throw ZelmException("Wrong value of --show: \"" + *options.show + "\", expected a number of 0 or more");
    }
    return *count;
}

std::uint64_t RequireByteCount(const std::string& text, const std::string& option) {
    const std::optional<std::uint64_t> bytes = ByteCount(text);
    if (!bytes) {
        throw ZelmException("Wrong value of " + option + ": \"" + text +
                            "\", expected a number of 1 or more bytes, K, M or G behind it counting");
    }
    return *bytes;
}

std::optional<std::uint64_t> CacheSizeOf(const AnalyzeOptions& options) {
    return options.cacheSize ? std::optional(RequireByteCount(*options.cacheSize, "--cache-size")) : std::nullopt;
}

UnitLimits LimitsOf(const AnalyzeOptions& options) {
    UnitLimits limits;
    limits.time = SecondsOf(options.timeout, "--timeout");
    if (options.maxOutput) {
        limits.outputBytes = RequireByteCount(*options.maxOutput, "--max-output");
    }
    return limits;
}

std::optional<std::uint64_t> MaxMemoryOf(const AnalyzeOptions& options) {
    return options.maxMemory ? std::optional(RequireByteCount(*options.maxMemory, "--max-memory")) : std::nullopt;
}

std::optional<BundleWishes> BundlesOf(const AnalyzeOptions& options) {
    const std::optional<std::chrono::seconds> slow = SecondsOf(options.bundleSlow, "--bundle-slow");
    if (!options.bundle) {
        if (slow || !options.bundleSources.empty() || options.scrub) {
            throw ZelmException("--bundle-slow, --bundle-unit and --scrub need --bundle");
        }
        return std::nullopt;
    }
    BundleWishes wishes = {AbsolutePath(*options.bundle), slow, {}, options.scrub};
    for (const std::string& source : options.bundleSources) {
        wishes.sources.push_back(AbsolutePath(source));
    }
    return wishes;
}

std::optional<OrvlogConverter::FindingGate> GateOf(const AnalyzeOptions& options) {
    return options.failOn ? std::make_optional<OrvlogConverter::FindingGate>(*options.failOn) : std::nullopt;
}

} // namespace Orvanta
