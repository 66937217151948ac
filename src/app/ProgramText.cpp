#include "app/ProgramText.h"

#include "app/TopLevel.h"
#include "app/Version.h"
#include "platform/Table.h"
#include "render/RenderTypes.h"
#include "render/misra/MisraEdition.h"

#include <args.hxx>

#include <algorithm>
#include <tuple>
#include <utility>

namespace Orvanta {

namespace {

// Stands behind the value's name of what may be given several times.
constexpr std::string_view Repeated = "...";

// Functions, since some lists are made from tables of other rooms.
struct ChoicesRow {
    const char* longName;
    std::vector<std::string> (*choices)();
};

// The words by which the groups of diagnostics are asked for, in the order of the help.
std::vector<std::string> AnalyzerChoices() {
    return {"GA", "64", "OP", "CS", "MISRA", "AUTOSAR", "OWASP"};
}

std::vector<std::string> SpecificationChoices() {
    std::vector<std::string> names = AnalyzerChoices();
    names.insert(names.begin(), "all");
    return names;
}

std::vector<std::string> RenderTypeChoices() {
    std::vector<std::string> names;
    for (const OrvlogConverter::RenderType& type : OrvlogConverter::AllRenderTypes()) {
        names.emplace_back(type.name);
    }
    return names;
}

std::vector<std::string> MisraStandardChoices() {
    std::vector<std::string> names;
    for (const OrvlogConverter::MisraEdition& edition : OrvlogConverter::AllMisraEditions()) {
        names.emplace_back(edition.ShortName());
    }
    return names;
}

// The options whose values are words of a list.
const ChoicesRow ChoicesOfOptions[] = {
    {"--analysis-mode", AnalyzerChoices},
    {"--analyzer", SpecificationChoices},
    {"--engines",
     [] {
         return std::vector<std::string>{"cppcheck", "clang"};
     }},
    {"--fail-on", SpecificationChoices},
    {"--render-types", RenderTypeChoices},
    {"--preprocessor",
     [] {
         return std::vector<std::string>{"gcc", "clang"};
     }},
    {"--platform",
     [] {
         return std::vector<std::string>{"linux64", "linux32"};
     }},
    {"--regenerate-depend-info",
     [] {
         return std::vector<std::string>{"skip-analysis", "run-analysis"};
     }},
    {"--misra-standard", MisraStandardChoices},
};

struct KindRow {
    std::string_view valueName;
    ValueKind kind;
};

// The names that values have in the help say what a shell may offer.
constexpr KindRow KindsOfValues[] = {
    {"FILE", ValueKind::File},
    {"OLD", ValueKind::File},
    {"PATH", ValueKind::File},
    {"DIR", ValueKind::Folder},
};

// Choices first: an option with a list of words is no file, whatever its value is called.
void FindKind(OptionText& option) {
    if (const ChoicesRow* const row = FindRow(ChoicesOfOptions, &ChoicesRow::longName, option.longName)) {
        option.choices = row->choices();
        option.kind = ValueKind::Choices;
        return;
    }
    option.kind = option.valueName.empty() ? ValueKind::None : ValueKind::Any;
    if (const KindRow* const row = FindRow(KindsOfValues, &KindRow::valueName, option.valueName)) {
        option.kind = row->kind;
    }
}

// `names` is such as "-j[N], --threads=[N]".
OptionText ReadOption(std::string_view names, std::string help) {
    OptionText option;
    option.help = std::move(help);
    // Both names carry the value's name; the last one read counts, as they are the same.
    while (!names.empty()) {
        const std::size_t comma = names.find(", ");
        std::string_view name = names.substr(0, comma);
        names.remove_prefix(comma == std::string_view::npos ? names.size() : comma + 2);
        if (const std::size_t bracket = name.find('['); bracket != std::string_view::npos) {
            option.valueName = name.substr(bracket + 1, name.size() - bracket - 2);
            name = name.substr(0, bracket);
            if (option.valueName.ends_with(Repeated)) {
                option.valueName.resize(option.valueName.size() - Repeated.size());
            }
        }
        if (name.ends_with('=')) {
            name.remove_suffix(1);
        }
        (name.starts_with("--") ? option.longName : option.shortName) = name;
    }
    FindKind(option);
    return option;
}

// With the options of subcommands, which are not shown otherwise.
args::HelpParams ParametersOf(const args::ArgumentParser& parser) {
    args::HelpParams parameters = parser.helpParams;
    parameters.showCommandChildren = true;
    return parameters;
}

// A row of the help: an option when its names say so, else an argument without a name.
void AddRow(CommandText& command, const std::string& names, std::string help) {
    if (names.starts_with('-')) {
        command.options.push_back(ReadOption(names, std::move(help)));
    } else if (!names.empty()) {
        OptionText argument;
        argument.valueName = names.substr(0, names.find(Repeated));
        argument.help = std::move(help);
        command.arguments.push_back(std::move(argument));
    }
}

} // namespace

ProgramText DescribeProgram(const args::ArgumentParser& parser) {
    ProgramText program = {parser.Prog(), Version, parser.Description(), parser.Epilog(), {}, {}};
    const args::HelpParams parameters = ParametersOf(parser);
    for (const args::Base* const child : parser.Children()) {
        // The parser's list of children holds the hidden ones too.
        if ((child->GetOptions() & args::Options::HiddenFromDescription) != args::Options::None) {
            continue;
        }
        // Of a subcommand: its own name, then the rows of its options.
        auto rows = child->GetDescription(parameters, 0);
        CommandText* target = &program.own;
        if (const auto* const command = dynamic_cast<const args::Command*>(child)) {
            target = &program.commands.emplace_back(CommandText{command->Name(), command->Help(), {}, {}});
            rows.erase(rows.begin()); // its own name
        }
        for (auto& [names, help, indent] : rows) {
            AddRow(*target, names, std::move(help));
        }
    }
    return program;
}

// Thrown from the parser's actions, so that nothing behind them on the command line is looked at.
struct TextOptions::Flags {
    explicit Flags(args::ArgumentParser& parser)
        : manual(
              parser, "print-manual", "", {"print-manual"},
              [&parser] { throw PrintRequest(ManualPage(DescribeProgram(parser))); }, args::Options::Hidden),
          completion(
              parser, "SHELL", "", {"print-completion"},
              [&parser](const std::string& shell) {
                  throw PrintRequest(CompletionScript(DescribeProgram(parser), shell));
              },
              args::Options::Hidden) {}

    args::ActionFlag manual;
    args::ActionFlag completion;
};

TextOptions::TextOptions(args::ArgumentParser& parser) : flags_(std::make_unique<Flags>(parser)) {}

TextOptions::~TextOptions() = default;

} // namespace Orvanta
