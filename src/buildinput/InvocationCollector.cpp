#include "buildinput/InvocationCollector.h"

#include "buildinput/Launchers.h"
#include "buildinput/ProgramName.h"
#include "buildinput/ShellLine.h"
#include "compilers/CommandLineReader.h"
#include "compilers/InputKind.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Process.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view Ccache = "ccache";
// In bytes; more would push the reason out of sight, which stands behind it.
constexpr std::size_t LongestCommandText = 120;
constexpr const char* ZeroByteReason = "it holds a zero byte";

/// The command as text, cut to a length that fits a message; not within a character.
std::string ShortCommandText(const std::vector<std::string>& arguments) {
    std::string text = CommandLineText(arguments);
    if (text.size() <= LongestCommandText) {
        return text;
    }
    std::size_t end = LongestCommandText;
    // In UTF-8 such a byte goes on with the character before it.
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    return text.substr(0, end) + "...";
}

/// A short name for a command: its output, else its first input, else its text.
std::string NameOfCommand(const std::vector<std::string>& arguments) {
    // No model is asked: the command may be of a compiler that nobody knows.
    const std::string* input = nullptr;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-o" && i + 1 < arguments.size()) {
            return arguments[i + 1];
        }
        if (argument.starts_with("-o") && argument.size() > 2) {
            return argument.substr(2);
        }
        if (input == nullptr && !argument.empty() && argument.front() != '-') {
            input = &argument;
        }
    }
    return input != nullptr ? *input : ShortCommandText(arguments);
}

/// Whether a text holds a zero byte. No path, argument or variable can, and the system would cut it there in silence.
bool HoldsZeroByte(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

/// The names of variables can't hold one: readers take over none of that kind.
bool HoldsZeroByte(const Environment& environment) {
    return std::any_of(environment.begin(), environment.end(),
                       [](const auto& variable) { return HoldsZeroByte(std::string_view(variable.second)); });
}

/// Whether the name is a compiler's: one that compilers have, or one of those that the user has named.
bool IsCompiler(std::string_view program, const std::vector<std::string>& names) {
    return LooksLikeCompiler(program) || IsProgramAmong(program, names);
}

/// A program that is not known, with a compiler among the words that follow: refused with advice instead of being asked
/// for its version, as it may do anything.
bool LooksLikeLauncher(const std::vector<std::string>& arguments, const std::vector<std::string>& names) {
    if (IsCompiler(arguments[0], names) || FileNameOf(arguments[0]) == Ccache) {
        return false;
    }
    for (auto word = arguments.begin() + 1; word != arguments.end(); ++word) {
        if (IsCompiler(*word, names)) {
            return true;
        }
        // Between them may stand another launcher and long options. A short option may have a value, which nobody can
        // tell, and behind a source there is no compiler.
        const bool isShortOption = word->starts_with('-') && !word->starts_with("--");
        if (isShortOption || IsSource(InputKindByExtension(*word))) {
            return false;
        }
    }
    return false;
}

/// Whether the compiler filter lets the command through; an empty filter lets all. Behind "ccache" the compiler counts.
bool PassesFilter(const std::vector<std::string>& arguments, const std::vector<std::string>& filter) {
    // By the first word as it is written: what a launcher starts has been brought to the front already.
    return filter.empty() || IsProgramAmong(arguments[0], filter) ||
           (arguments.size() > 1 && FileNameOf(arguments[0]) == Ccache && IsProgramAmong(arguments[1], filter));
}

/// What can be refused without a look at the disk; no value when nothing is wrong so far. `arguments` is not empty.
std::optional<InvocationRefusal> Refuse(const std::vector<std::string>& arguments, const std::string& workingDirectory,
                                        const Environment& environment, const std::vector<std::string>& filter) {
    // From the cheapest question to the dearest, before anything is looked up or started.
    if (arguments[0].empty()) {
        return InvocationRefusal{InvocationFate::Unreadable, "the command names no compiler"};
    }
    // The other words are looked at when the files with further arguments are in their place.
    if (HoldsZeroByte(arguments[0]) || HoldsZeroByte(workingDirectory) || HoldsZeroByte(environment)) {
        return InvocationRefusal{InvocationFate::Unreadable, ZeroByteReason};
    }
    if (!PassesFilter(arguments, filter)) {
        return InvocationRefusal{InvocationFate::OtherCompiler,
                                 "the compiler " + InQuotes(arguments[0]) + " is not one of those asked for"};
    }
    return std::nullopt;
}

/// Turns the verdict on the compiler into a fate; no value for a compiler of a known family. `program` is the compiler
/// as the command names it.
std::optional<InvocationRefusal> RefuseCompiler(const CompilerIdentifier::Result& identified,
                                                const std::string& program) {
    switch (identified.verdict) {
    case IdentificationVerdict::Known:
        break;
    case IdentificationVerdict::Launcher:
        return InvocationRefusal{InvocationFate::SkippedLauncher, "ccache command"};
    case IdentificationVerdict::Missing:
        return InvocationRefusal{InvocationFate::CompilerUnusable,
                                 "the compiler " + InQuotes(program) + " was not found"};
    case IdentificationVerdict::Unusable:
        return InvocationRefusal{InvocationFate::CompilerUnusable, identified.compiler->fault};
    case IdentificationVerdict::Unknown:
        return InvocationRefusal{InvocationFate::UnknownCompiler,
                                 "the compiler " + InQuotes(identified.compiler->path) + " can't be identified"};
    }
    return std::nullopt;
}

/// Whether all sources of a command have vanished.
bool NoneExists(const std::vector<SourceArgument>& sources, const std::vector<std::string>& arguments,
                const std::string& directory) {
    return std::none_of(sources.begin(), sources.end(), [&](const SourceArgument& source) {
        const std::string path = JoinPath(directory, std::string_view(arguments[source.index]).substr(source.offset));
        return LookAt(path).kind != PathKind::Nothing; // when it can't be told, the compiler will say why
    });
}

} // namespace

InvocationCollector::InvocationCollector(const RunSettings& settings, const CompilerRegistry& registry,
                                         CompilerIdentifier& identifier, Log& log)
    : settings_(settings), identifier_(identifier), log_(log), records_(registry), reader_(settings, log) {}

void InvocationCollector::AddInvocation(std::vector<std::string> arguments, const std::string& workingDirectory,
                                        const Environment& environment) {
    AddInvocationFrom(arguments, workingDirectory, environment, EnvironmentScope::Changes);
}

void InvocationCollector::AddInvocationFrom(std::vector<std::string>& arguments, const std::string& workingDirectory,
                                            const Environment& environment, EnvironmentScope scope) {
    // Counted before anything can fail: an invocation's number is its place in the input.
    ++collected_.invocations;
    if (!IsWanted(arguments, workingDirectory)) {
        return;
    }
    std::optional<InvocationRefusal> refusal;
    try {
        // Only errors that this system has put into words are the invocation's; others, such as a full memory, are the
        // run's.
        refusal = IsShellLine(arguments) ? CollectShellLine(arguments, workingDirectory, environment, scope)
                                         : CollectLaunched(arguments, workingDirectory, environment, scope);
    } catch (const ZelmException& error) {
        refusal = InvocationRefusal{InvocationFate::Unreadable, error.what()};
    }
    if (refusal) {
        Skip(arguments, *std::move(refusal));
    }
}

void InvocationCollector::AddUnreadable(const std::vector<std::string>& arguments, std::string reason) {
    ++collected_.invocations;
    if (IsWanted(arguments, {})) {
        Skip(arguments, {InvocationFate::Unreadable, std::move(reason)});
    }
}

void InvocationCollector::TakeBy(InvocationSieve& sieve) {
    sieve_ = &sieve;
    reader_.TellFiles([&sieve](const std::string& path, const std::vector<std::string>& words) {
        sieve.trails.back().files.push_back({path, words});
    });
}

bool InvocationCollector::IsWanted(const std::vector<std::string>& arguments, const std::string& workingDirectory) {
    if (sieve_ == nullptr) {
        return true;
    }
    if (!sieve_->wants(arguments)) {
        return false;
    }
    if (sieve_->onlyWithFiles && !sieve_->trails.empty() && sieve_->trails.back().files.empty()) {
        sieve_->trails.pop_back();
    }
    sieve_->trails.push_back({collected_.invocations, arguments, workingDirectory, {}, {}, {}});
    return true;
}

void InvocationCollector::NoteLaunchers(std::vector<std::string> before, const std::vector<std::string>& arguments) {
    InvocationTrail& trail = sieve_->trails.back();
    auto end = arguments.empty() ? before.end() : std::find(before.begin(), before.end(), arguments.front());
    if (end == before.end() && !arguments.empty()) {
        end -= static_cast<std::ptrdiff_t>(arguments.size()); // its name has been brought into another form
    }
    trail.launcher.insert(trail.launcher.end(), std::make_move_iterator(before.begin()), std::make_move_iterator(end));
}

void InvocationCollector::Skip(const std::vector<std::string>& arguments, InvocationRefusal refusal) {
    collected_.skipped.push_back({collected_.invocations, refusal.fate,
                                  refusal.what.empty() ? NameOfCommand(arguments) : std::move(refusal.what),
                                  std::move(refusal.reason)});
}

CollectedCommands InvocationCollector::Take() {
    return std::exchange(collected_, {});
}

/// Takes the compiler's commands of a line that was meant for a shell.
std::optional<InvocationRefusal> InvocationCollector::CollectShellLine(const std::vector<std::string>& arguments,
                                                                       const std::string& workingDirectory,
                                                                       const Environment& environment,
                                                                       EnvironmentScope scope) {
    // Kept when no command of the line could be one of a compiler.
    std::optional<InvocationRefusal> refusal =
        InvocationRefusal{InvocationFate::NotACompilation, "no command of a compiler"};
    bool gaveUnits = false;
    for (ShellCommand& command : SplitShellLine(arguments)) {
        const bool mayCompile = std::any_of(command.words.begin(), command.words.end(), [this](std::string_view word) {
            return IsCompiler(word, settings_.compilerNames);
        });
        if (!mayCompile) {
            continue;
        }
        const std::string directory =
            command.directory.empty() ? workingDirectory : JoinPath(workingDirectory, command.directory);
        // A command of the line that gives nothing doesn't count where another one gives units: linkers follow
        // compilers.
        std::optional<InvocationRefusal> own = CollectLaunched(command.words, directory, environment, scope);
        gaveUnits = gaveUnits || !own;
        refusal = std::move(own);
    }
    return gaveUnits ? std::nullopt : refusal;
}

/// Takes a command with whatever stands in front of its compiler.
std::optional<InvocationRefusal> InvocationCollector::CollectLaunched(std::vector<std::string>& arguments,
                                                                      const std::string& workingDirectory,
                                                                      const Environment& environment,
                                                                      EnvironmentScope scope) {
    if (arguments.empty()) {
        return InvocationRefusal{InvocationFate::Unreadable, "the command string can't be split"};
    }
    // Nearly every command of a build begins with the same compiler: for it, no name is compared with any list.
    if (arguments[0] == plainCompiler_) {
        return Collect(arguments, workingDirectory, environment, scope);
    }
    std::vector<std::string> before = sieve_ != nullptr ? arguments : std::vector<std::string>();
    const LauncherEffects effects = RemoveLaunchers(arguments, settings_.launcherNames);
    if (sieve_ != nullptr && effects.any) {
        NoteLaunchers(std::move(before), arguments);
    }
    if (!effects.otherPurpose.empty()) {
        return InvocationRefusal{InvocationFate::NotACompilation, std::string(effects.otherPurpose)};
    }
    if (!effects.any) {
        if (IsCompiler(arguments[0], settings_.compilerNames) && FileNameOf(arguments[0]) != Ccache) {
            plainCompiler_ = arguments[0];
        }
        return Collect(arguments, workingDirectory, environment, scope);
    }
    if (arguments.empty()) {
        return InvocationRefusal{InvocationFate::NotACompilation, "no command of a compiler"};
    }
    Environment variables = effects.variables;
    // Inserting leaves alone what is there: the launcher's variables are the ones that the compiler has seen.
    variables.insert(environment.begin(), environment.end());
    const std::string directory =
        effects.directory.empty() ? workingDirectory : JoinPath(workingDirectory, effects.directory);
    return Collect(arguments, directory, variables, scope);
}

std::optional<InvocationRefusal> InvocationCollector::RefuseOutline(const InvocationOutline& outline,
                                                                    const std::vector<std::string>& arguments,
                                                                    const std::string& directory) const {
    if (outline.missingResponseFile && leavesOutDeleted_ && !outline.makesObjects && outline.sources.empty()) {
        return InvocationRefusal{InvocationFate::NotACompilation, "link only"}; // its list of objects has been removed
    }
    if (outline.missingResponseFile) {
        return InvocationRefusal{InvocationFate::Unreadable,
                                 "the response file " + InQuotes(arguments[*outline.missingResponseFile].substr(1)) +
                                     " doesn't exist"};
    }
    if (outline.sources.empty()) {
        return InvocationRefusal{InvocationFate::NotACompilation, std::string(outline.reason)};
    }
    if (leavesOutDeleted_ && NoneExists(outline.sources, arguments, directory)) {
        const SourceArgument& first = outline.sources.front();
        return InvocationRefusal{InvocationFate::DeletedSinceTrace, "source deleted since the trace",
                                 arguments[first.index].substr(first.offset)};
    }
    return std::nullopt;
}

std::optional<InvocationRefusal> InvocationCollector::Collect(std::vector<std::string>& arguments,
                                                              const std::string& workingDirectory,
                                                              const Environment& environment, EnvironmentScope scope) {
    if (std::optional<InvocationRefusal> refusal =
            Refuse(arguments, workingDirectory, environment, settings_.compilerFilter)) {
        return refusal;
    }
    if (arguments[0] != plainCompiler_ && LooksLikeLauncher(arguments, settings_.compilerNames)) {
        return InvocationRefusal{InvocationFate::UnknownCompiler,
                                 "the program " + InQuotes(arguments[0]) +
                                     " looks like a launcher: the key \"launcher\" of a settings file makes it one"};
    }
    // A copy: the command may name another directory, further down.
    SharedDirectory directory = records_.Of(workingDirectory);
    CompilerIdentifier::Result identified = identifier_.IdentifyCompiler(arguments, *directory.absolute, environment);
    if (std::optional<InvocationRefusal> refusal = RefuseCompiler(identified, arguments.front())) {
        return refusal;
    }
    if (sieve_ != nullptr) {
        if (identified.wrapped) {
            sieve_->trails.back().launcher.emplace_back(Ccache);
        }
        sieve_->trails.back().command = arguments;
    }
    // Before the variables are added: which of them count depends on the family.
    identified.compiler = records_.InDriverMode(identified.compiler, arguments);
    const Compiler& model = records_.ModelOf(identified.compiler->type);
    std::vector<const Environment*> layers = {&settings_.environmentChanges, &environment};
    // Where the input gave the whole environment, the driver's own variables had no part in the build.
    if (scope == EnvironmentScope::Changes) {
        layers.push_back(&OwnEnvironment());
    }
    reader_.Complete(arguments, model, *identified.compiler, *directory.absolute, layers);
    if (std::any_of(arguments.begin(), arguments.end(), [](std::string_view word) { return HoldsZeroByte(word); })) {
        return InvocationRefusal{InvocationFate::Unreadable, ZeroByteReason};
    }
    const InvocationOutline outline = reader_.Outline(model, arguments, *directory.absolute);
    // Files with arguments have been read from the first one: the compiler, too, meets the flag only when it has read
    // them.
    if (!outline.directory.empty()) {
        directory = records_.Of(JoinPath(*directory.absolute, outline.directory));
    }
    if (std::optional<InvocationRefusal> refusal = RefuseOutline(outline, arguments, *directory.absolute)) {
        return refusal;
    }
    // Only here, where it is certain that units need it.
    const std::shared_ptr<const Environment> sharedEnvironment = records_.Of(environment);
    for (const SourceArgument& source : outline.sources) {
        collected_.units.push_back({directory.written, directory.absolute, ArgumentList(arguments), sharedEnvironment,
                                    identified.compiler, source, collected_.invocations, identified.wrapped, scope});
    }
    return std::nullopt;
}

} // namespace Orvanta
