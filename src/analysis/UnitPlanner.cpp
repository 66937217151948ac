#include "analysis/UnitPlanner.h"

#include "buildinput/CompilerVariables.h"
#include "compilers/CommandLineReader.h"
#include "compilers/CompilerRegistry.h"
#include "platform/EnvironmentNames.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

constexpr const char* PredefinedMacro = "ORVANTA";
constexpr std::size_t LongestSourceNamePart = 100; // of a unit's file names: file systems end names at 255 bytes

// A name is looked for one by one, since on Windows its letter case doesn't count.
void RemoveVariable(Environment& variables, std::string_view name) {
    std::erase_if(variables, [name](const auto& variable) { return IsSameVariable(variable.first, name); });
}

// The later layer wins. What would make the compiler write files goes last, so that no layer brings it back.
Environment InvocationEnvironment(Environment variables, const Environment& ownVariables, const Environment& changes) {
    for (const Environment* const layer : {&ownVariables, &changes}) {
        for (const auto& [name, value] : *layer) {
            RemoveVariable(variables, name);
            variables.emplace(name, value);
        }
    }
    RemoveWritingVariables(variables);
    return variables;
}

// Behind all that the build says: among folders of headers, the build's own are searched first.
void AddArgument(ParsedCommand& command, std::vector<std::string>& list, const char* flag, const std::string& value) {
    command.keptArguments.push_back(flag + value);
    list.push_back(value);
}

// The folder of the system that holds the source, as the command writes it; null when there is none. By the paths as
// they are written: no link is followed.
const std::string* SystemFolderOf(const UnitPlan& plan) {
    const std::vector<std::string>& folders = plan.parsed.systemIncludes;
    const auto holder = std::find_if(folders.begin(), folders.end(), [&plan](const std::string& folder) {
        if (folder.empty()) {
            return false; // compilers ignore it
        }
        const std::string path = NormalizePath(JoinPath(plan.Directory(), folder));
        // A root ends in its separator: as a system root it would hold every source.
        return !IsSeparator(path.back()) && plan.sourcePath.size() > path.size() && plan.sourcePath.starts_with(path) &&
               IsSeparator(plan.sourcePath[path.size()]);
    });
    return holder == folders.end() ? nullptr : &*holder;
}

// Its script is a program of the build as well.
VisualStudioEnvironment::Host VisualStudioHost(const RunSettings& settings) {
    VisualStudioEnvironment::Host host;
    host.exists = [&settings](const std::string& path) {
        return LookAt(path).IsThere() && MayStart(settings, path);
    };
    return host;
}

} // namespace

// The exclusion comes first: of a unit that is both, the user hears what the user has said.
void JudgeUnit(UnitPlan& plan, const RunSettings& settings) {
    if (std::optional<std::string> rule = ExclusionRule(settings, plan.sourcePath)) {
        plan.verdict = UnitVerdict::ExcludedBySetting;
        plan.verdictRule = *std::move(rule);
    } else if (const std::string* const folder = settings.analyzeSystemPaths ? nullptr : SystemFolderOf(plan)) {
        plan.verdict = UnitVerdict::InSystemFolder;
        plan.verdictRule = "system folder " + *folder;
    }
}

UnitPlanner::UnitPlanner(const RunSettings& settings, const CompilerRegistry& registry, const RunPlaces& places,
                         Log& log, const StopFlag& stop)
    : settings_(settings), registry_(registry), places_(places), log_(log), probe_(places.temporaryFolder, stop),
      platforms_(settings.childLauncher), visualStudio_(log, VisualStudioHost(settings)),
      commonEnvironment_(std::make_shared<EnvironmentBlock>(
          InvocationEnvironment(OwnEnvironment(), {}, settings.environmentChanges))) {}

UnitPlan UnitPlanner::Plan(const CompileCommand& command, std::size_t unit, IntermodularAnalysisMode mode) {
    UnitPlan plan;
    plan.command = &command;
    plan.unit = unit;
    plan.sourcePath = SourcePath(command);
    plan.model = GetPreprocessor(command.compiler->type);
    std::vector<std::string> arguments = command.arguments.ToVector();
    // The program that was identified, by its own path: a bare name might find another one in the unit's environment.
    arguments.front() = command.compiler->path;
    plan.parsed = ReadCommandLine(*plan.model, arguments, command.source);
    if (plan.parsed.compilerType != plan.model->Type()) {
        plan.model = GetPreprocessor(plan.parsed.compilerType); // a flag makes it one of a sibling family
    }
    for (const std::string& directory : settings_.extraIncludes) {
        AddArgument(plan.parsed, plan.parsed.userIncludes, "-I", directory);
    }
    AddArgument(plan.parsed, plan.parsed.defines, "-D", PredefinedMacro);
    // Before the environment and the settings, both of which depend on the platform.
    plan.platformOrigin = FindPlatform(plan.parsed);
    if (settings_.userSettings.contains("platform")) {
        plan.platformOrigin = PlatformOrigin::Settings; // which wins over what was found
    }
    JudgeUnit(plan, settings_);
    plan.environment = EnvironmentOf(command, plan.parsed);
    // The whole environment of a build is the compiler's business; the core belongs to this run.
    plan.coreEnvironment = command.environmentScope == EnvironmentScope::Whole ? commonEnvironment_ : plan.environment;
    plan.files = NameFiles(command, unit);
    plan.preprocessing = plan.model->BuildPreprocessCommand(plan.parsed, plan.files.preprocessedPath);
    const std::string standard = FindStandard(plan);
    plan.settings = BuildUnitSettings(settings_.userSettings, *plan.model, plan.parsed, standard, plan.files);
    AddIntermodularSettings(plan.settings, mode, places_.mergedFile, plan.files.collectedPath);
    return plan;
}

// Where no flag says for what the unit is compiled, its compiler tells.
PlatformOrigin UnitPlanner::FindPlatform(ParsedCommand& parsed) {
    // Only these families know the question (-dumpmachine).
    const bool speaksGcc = parsed.compilerType == CompilerType::Gcc || parsed.compilerType == CompilerType::Clang;
    if (!speaksGcc || !parsed.platformWord.empty()) {
        return PlatformOrigin::Command;
    }
    const std::optional<TargetPlatform> target =
        parsed.targetTriple.empty() ? platforms_.Get(parsed.compilerPath) : PlatformOfTriple(parsed.targetTriple);
    if (target) {
        parsed.platformWord = target->word;
    }
    if (log_.IsVerbose()) {
        TellPlatform(parsed, target);
    }
    if (!target) {
        return PlatformOrigin::Default;
    }
    return parsed.targetTriple.empty() ? PlatformOrigin::Compiler : PlatformOrigin::Command;
}

void UnitPlanner::TellPlatform(const ParsedCommand& parsed, const std::optional<TargetPlatform>& target) {
    std::string text = "Compiler platform: '" + parsed.compilerPath + "' is " + (target ? target->triple : "x64");
    if (target) {
        text.append(", for the core ").append(target->word);
        if (target->isPlainCharUnsigned && !parsed.unsignedChar && !parsed.effects.Has(FlagEffect::UnsignedChar)) {
            text += "; its own plain char is unsigned, the core is told signed: funsigned-char=yes in a settings file "
                    "tells it otherwise";
        }
    }
    // Kept by the whole text: the same compiler may be told of again with another target.
    (void)toldPlatforms_.Get(text, [&] {
        log_.VerboseLine(text);
        return true;
    });
}

std::shared_ptr<const Compiler> UnitPlanner::GetPreprocessor(CompilerType type) const {
    return registry_.Get(type);
}

UnitFiles UnitPlanner::NameFiles(const CompileCommand& command, std::size_t unit) const {
    const std::string_view sourceName = FileNameOf(command.SourceFile());
    const std::string name = std::to_string(unit + 1) + "_" + std::string(sourceName.substr(0, LongestSourceNamePart));
    UnitFiles files;
    files.basePath = JoinPath(places_.unitFolder, name);
    files.preprocessedPath = files.basePath + ".Orvanta.i";
    files.fragmentPath = files.basePath + ".Orvanta.findings";
    // What one stage leaves to the next goes with the run, wherever the user wants the unit's files: so the next run
    // clears what a killed one has left.
    const std::string stagesPath = JoinPath(places_.temporaryFolder, name);
    files.dependenciesPath = stagesPath + ".Orvanta.dependencies";
    files.collectedPath = places_.collectedPathOf ? places_.collectedPathOf(unit) : stagesPath + ".Orvanta.dfo";
    return files;
}

std::shared_ptr<const EnvironmentBlock> UnitPlanner::EnvironmentOf(const CompileCommand& invocation,
                                                                   const ParsedCommand& parsed) {
    const bool isMsvc = IsMsvcFamily(invocation.compiler->type);
    // A trace may hold all of a build's variables: then ours are no part of it.
    const bool isWhole = invocation.environmentScope == EnvironmentScope::Whole;
    // Nearly all units of nearly all builds: they share one block, which is made once.
    if (!isMsvc && !isWhole && invocation.environment->empty()) {
        return commonEnvironment_;
    }
    Environment base = isWhole ? Environment() : OwnEnvironment();
    if (isMsvc) {
        if (const auto setUp = visualStudio_.VariablesFor(*invocation.compiler, parsed.platformWord)) {
            base = *setUp;
        }
    }
    Environment variables =
        InvocationEnvironment(std::move(base), *invocation.environment, settings_.environmentChanges);
    if (isMsvc) {
        // Their words stand among the arguments already.
        RemoveVariable(variables, FrontArgumentsVariable);
        RemoveVariable(variables, BackArgumentsVariable);
    }
    return std::make_shared<const EnvironmentBlock>(variables);
}

std::string UnitPlanner::FindStandard(UnitPlan& plan) {
    const Language language = UnitLanguage(plan.parsed);
    const std::optional<FlagKind> stated = language == Language::C ? plan.parsed.cStandard : plan.parsed.cppStandard;
    // The user's word wins in any case.
    if (settings_.userSettings.contains("std")) {
        plan.standardOrigin = StandardOrigin::Settings;
        return "";
    }
    if (stated) {
        return std::string(StandardWord(*stated, language));
    }
    ProbedStandard answer = probe_.ProbeLanguageStandard(*plan.model, plan.parsed, language,
                                                         {plan.Directory(), *plan.environment, settings_.childLauncher},
                                                         *plan.command->environment);
    plan.standardOrigin = answer.isTold ? StandardOrigin::Compiler : StandardOrigin::Fallback;
    return std::move(answer.word);
}

} // namespace Orvanta
