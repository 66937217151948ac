#include "app/inspect/UnitChecks.h"

#include "analysis/UnitPlanner.h"
#include "compilers/CommandLineReader.h"
#include "compilers/CommandNotes.h"
#include "platform/FileStamp.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Process.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

// The values of these name what is written for one unit: they differ in each, and mean nothing here.
constexpr std::string_view OutputFlags[] = {"-o", "-MF", "-MT", "-MQ"};

// Where compilers of a system look for headers at the end.
constexpr const char* SystemHeaders = "/usr/include";

// What the words of a unit say beside its source and its outputs.
std::string SharedWords(const CompileCommand& unit, const std::vector<std::string>& arguments) {
    std::string words = *unit.absoluteDirectory;
    for (std::size_t place = 0; place < arguments.size(); ++place) {
        const bool isSource = place == unit.source.index;
        const bool isOutput = place > 0 && std::find(std::begin(OutputFlags), std::end(OutputFlags),
                                                     arguments[place - 1]) != std::end(OutputFlags);
        words += '\0';
        if (!isSource && !isOutput) {
            words += arguments[place];
        } else if (isSource) {
            words.append(arguments[place], 0, unit.source.offset).append(ExtensionOf(arguments[place]));
        }
    }
    return words;
}

// The flags of a unit that decide its text, each as one word.
std::set<std::string> TextFlags(const Compiler& model, const CompileCommand& unit) {
    std::set<std::string> flags;
    for (const WordNote& note : NoteWords(model, unit.arguments.ToVector(), unit.source)) {
        if (note.fate == WordFate::Kept && !note.isForOutput) {
            flags.insert(CommandLineText(note.words));
        }
    }
    return flags;
}

// What one of them has and the other has not, as a person compares two commands.
std::string Difference(const std::set<std::string>& left, const std::set<std::string>& right) {
    std::vector<std::string> different;
    std::set_symmetric_difference(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(different));
    return CommandLineText(different);
}

} // namespace

bool UnitChecks::IsThere(const std::string& path) {
    const auto [answer, isNew] = isThere_.try_emplace(path);
    if (isNew) {
        const PathAnswer look = Orvanta::LookAt(path);
        answer->second = look.kind != PathKind::Nothing; // when it can't be told, the compiler says why
    }
    return answer->second;
}

bool UnitChecks::IsNew(Check check, const std::string& thing) {
    return met_.emplace(check, thing).second;
}

void UnitChecks::LookAt(const CollectedCommands& commands) {
    LookAtSkipped(commands);
    firstOf_.reserve(commands.units.size());
    for (const CompileCommand& unit : commands.units) {
        LookAtUnit(unit);
    }
    if (sourcesThere_ == 0 && !commands.units.empty()) {
        // Each of them by name says less than what they have in common.
        diagnosis_.Drop(Check::MissingSource);
        diagnosis_.Add(Check::WrongDatabase, SourcePath(commands.units.front()), commands.units.front().invocation);
    } else if (left_ == 0) {
        diagnosis_.Add(Check::NothingLeft, std::to_string(commands.units.size()) + " source files, " +
                                               std::to_string(commands.skipped.size()) + " skipped commands");
    }
}

void UnitChecks::LookAtSkipped(const CollectedCommands& commands) {
    for (const SkippedInvocation& skipped : commands.skipped) {
        const std::string text = skipped.what + ": " + skipped.reason;
        switch (skipped.fate) {
        case InvocationFate::NotACompilation:
        case InvocationFate::OtherCompiler:
            break;
        case InvocationFate::UnknownCompiler:
            diagnosis_.Add(Check::UnknownCompiler, text, skipped.invocation);
            break;
        case InvocationFate::SkippedLauncher:
            diagnosis_.Add(Check::SkippedLauncher, text, skipped.invocation);
            break;
        case InvocationFate::CompilerUnusable:
            diagnosis_.Add(Check::CompilerUnusable, text, skipped.invocation);
            break;
        case InvocationFate::Unreadable:
            diagnosis_.Add(Check::Unreadable, text, skipped.invocation);
            break;
        case InvocationFate::DeletedSinceTrace:
            diagnosis_.Add(Check::DeletedSource, text, skipped.invocation);
            break;
        }
    }
}

void UnitChecks::LookAtUnit(const CompileCommand& unit) {
    FlagSet& flags = FlagsOf(unit);
    flags.plan.command = &unit;
    flags.plan.sourcePath = SourcePath(unit);
    flags.plan.verdict = UnitVerdict::Analyze;
    JudgeUnit(flags.plan, settings_);
    if (flags.plan.verdict == UnitVerdict::InSystemFolder) {
        diagnosis_.Add(Check::InSystemFolder, flags.plan.sourcePath + ": " + flags.plan.verdictRule, unit.invocation);
    }
    LookForEarlier(unit, flags.plan.sourcePath);
    left_ += flags.plan.verdict == UnitVerdict::Analyze ? 1 : 0;
    const std::string folder(DirectoryOf(flags.plan.sourcePath));
    // A folder that is gone answers for all its files.
    if (!IsThere(folder) || Orvanta::LookAt(flags.plan.sourcePath).kind == PathKind::Nothing) {
        diagnosis_.Add(Check::MissingSource, flags.plan.sourcePath, unit.invocation);
        return;
    }
    ++sourcesThere_;
    folders_.insert(folder);
}

UnitChecks::FlagSet& UnitChecks::FlagsOf(const CompileCommand& unit) {
    std::vector<std::string> arguments = unit.arguments.ToVector();
    const auto [place, isNew] = flagSets_.try_emplace(SharedWords(unit, arguments));
    FlagSet& flags = place->second;
    if (isNew) {
        flags.entry = unit.invocation;
        flags.plan.command = &unit;
        flags.plan.model = registry_.Get(unit.compiler->type);
        LookAtCompiler(unit);
        arguments.front() = unit.compiler->path;
        flags.plan.parsed = ReadCommandLine(*flags.plan.model, arguments, unit.source);
        LookAtFlags(flags, arguments);
    }
    return flags;
}

void UnitChecks::LookAtFlags(const FlagSet& flags, const std::vector<std::string>& arguments) {
    const ParsedCommand& parsed = flags.plan.parsed;
    const std::string& directory = flags.plan.Directory();
    LookAtOrder(flags, arguments);
    LookAtForcedIncludes(flags);
    LookAtPrecompiled(flags);
    for (const std::vector<std::string>* const list : {&parsed.userIncludes, &parsed.systemIncludes}) {
        for (const std::string& folder : *list) {
            const std::string path = JoinPath(directory, folder);
            if (!folder.empty() && !IsThere(path) && IsNew(Check::MissingFolder, path)) {
                diagnosis_.Add(Check::MissingFolder, path, flags.entry);
            }
        }
    }
    for (const std::string& file : parsed.filesRead) {
        const std::string path = JoinPath(directory, file);
        if (file != parsed.precompiled.path && !IsThere(path) && IsNew(Check::MissingNamedFile, path)) {
            diagnosis_.Add(Check::MissingNamedFile, path, flags.entry);
        }
    }
}

void UnitChecks::LookAtOrder(const FlagSet& flags, const std::vector<std::string>& arguments) {
    const std::size_t source = flags.plan.command->source.index;
    std::set<std::string> standards;
    for (const WordNote& note : NoteWords(*flags.plan.model, arguments, flags.plan.command->source)) {
        const std::string words = CommandLineText(note.words);
        if (note.meaning == "language" && note.first > source) {
            diagnosis_.Add(Check::LanguageBehindSource, words + " behind " + arguments[source], flags.entry);
        } else if (note.meaning == "language standard") {
            standards.insert(words);
        }
    }
    if (standards.size() > 1) {
        diagnosis_.Add(Check::SeveralStandards, CommandLineText({standards.begin(), standards.end()}), flags.entry);
    }
}

// The compiler looks in its own folder, then among those of headers.
void UnitChecks::LookAtForcedIncludes(const FlagSet& flags) {
    const ParsedCommand& parsed = flags.plan.parsed;
    for (const std::string& header : parsed.forcedIncludes) {
        std::vector<std::string> places = {JoinPath(flags.plan.Directory(), header)};
        for (const std::vector<std::string>* const list : {&parsed.userIncludes, &parsed.systemIncludes}) {
            for (const std::string& folder : *list) {
                places.push_back(JoinPath(JoinPath(flags.plan.Directory(), folder), header));
            }
        }
        if (!IsMsvcFamily(flags.plan.model->Type())) {
            places.push_back(JoinPath(SystemHeaders, header));
        }
        const auto place =
            std::find_if(places.begin(), places.end(), [this](const std::string& path) { return IsThere(path); });
        const std::string& path = place == places.end() ? places.front() : *place;
        const std::string compiled = path + ".gch";
        if (place == places.end() && !IsThere(compiled)) {
            // cl finds bare names by its variables.
            const bool mayBeSystems = IsMsvcFamily(flags.plan.model->Type()) && FileNameOf(header) == header;
            if (!mayBeSystems && IsNew(Check::MissingForcedInclude, path)) {
                diagnosis_.Add(Check::MissingForcedInclude, header, flags.entry);
            }
        } else if (const auto form = StampOf(compiled); form && IsNew(Check::StalePrecompiled, compiled)) {
            const std::optional<FileStamp> plain = StampOf(path);
            if (plain && plain->modified > form->modified) {
                diagnosis_.Add(Check::StalePrecompiled, compiled, flags.entry);
            }
        }
    }
}

void UnitChecks::LookAtPrecompiled(const FlagSet& flags) {
    const std::string& named = flags.plan.parsed.precompiled.path;
    if (named.empty()) {
        return;
    }
    const std::string path = JoinPath(flags.plan.Directory(), named);
    const std::string header = path.substr(0, path.size() - ExtensionOf(path).size());
    const std::optional<FileStamp> compiled = StampOf(path);
    const std::optional<FileStamp> plain = StampOf(header);
    if (!compiled && IsNew(Check::MissingPrecompiled, path)) {
        diagnosis_.Add(Check::MissingPrecompiled, path, flags.entry);
    } else if (compiled && plain && plain->modified > compiled->modified && IsNew(Check::StalePrecompiled, path)) {
        diagnosis_.Add(Check::StalePrecompiled, path, flags.entry);
    }
}

void UnitChecks::LookAtCompiler(const CompileCommand& unit) {
    const CompilerInfo& compiler = *unit.compiler;
    const std::string_view word = unit.arguments[0];
    if (configured_.empty() || !IsNew(Check::WrongCompiler, std::string(word) + '\0' + compiler.path)) {
        return;
    }
    const std::string real = ResolveLinks(compiler.path);
    for (const ConfiguredCompiler& configured : configured_) {
        const bool isSame = ResolveLinks(configured.path) == real;
        const bool isNamed = StemOf(configured.path) == StemOf(word);
        if (!isSame && isNamed) {
            diagnosis_.Add(Check::WrongCompiler,
                           std::string(word) + " is " + compiler.path + ", but the build was configured with " +
                               configured.path + " (" + configured.record + ")",
                           unit.invocation);
        } else if (isSame && !configured.version.empty() && !compiler.version.empty() &&
                   compiler.version.find(configured.version) == std::string::npos) {
            std::string_view version = compiler.version;
            diagnosis_.Add(Check::WrongCompiler,
                           compiler.path + " is \"" + std::string(TakeLine(version)) +
                               "\", but the build was configured with release " + configured.version + " (" +
                               configured.record + ")",
                           unit.invocation);
        }
    }
}

void UnitChecks::LookForEarlier(const CompileCommand& unit, const std::string& source) {
    const auto [place, isNew] = firstOf_.try_emplace(ComparablePath(source), &unit);
    if (isNew) {
        return;
    }
    const CompileCommand& earlier = *place->second;
    const std::string where = source + ", and entry " + std::to_string(earlier.invocation);
    const std::string difference = Difference(TextFlags(*registry_.Get(earlier.compiler->type), earlier),
                                              TextFlags(*registry_.Get(unit.compiler->type), unit));
    if (difference.empty() && earlier.compiler->path == unit.compiler->path) {
        diagnosis_.Add(Check::DuplicateEntries, where, unit.invocation);
    } else {
        diagnosis_.Add(Check::ConflictingEntries, where + ": " + (difference.empty() ? "another compiler" : difference),
                       unit.invocation);
    }
}

} // namespace Orvanta
