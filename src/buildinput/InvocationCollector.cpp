#include "buildinput/InvocationCollector.h"

#include "buildinput/CompilerVariables.h"
#include "buildinput/Launchers.h"
#include "buildinput/OptionFile.h"
#include "buildinput/ProgramName.h"
#include "buildinput/ResponseFile.h"
#include "buildinput/ShellLine.h"
#include "compilers/CommandLineReader.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Process.h"
#include "platform/Text.h"

#include <algorithm>
#include <span>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view Ccache = "ccache";
// In bytes; more would push the reason out of sight, which stands behind it.
constexpr std::size_t LongestCommandText = 120;
constexpr const char* ZeroByteReason = "it holds a zero byte";

std::string Quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

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
    : settings_(settings), registry_(registry), identifier_(identifier), log_(log) {}

void InvocationCollector::SetBaseDirectory(std::string directory) {
    // What was made absolute by another base does not hold any more.
    baseDirectory_ = std::move(directory);
    lastDirectories_ = nullptr;
    directories_.clear();
}

void InvocationCollector::AddInvocation(std::vector<std::string> arguments, const std::string& workingDirectory,
                                        const Environment& environment) {
    AddInvocationFrom(arguments, workingDirectory, environment, EnvironmentScope::Changes);
}

void InvocationCollector::AddInvocationFrom(std::vector<std::string>& arguments, const std::string& workingDirectory,
                                            const Environment& environment, EnvironmentScope scope) {
    // Counted before anything can fail: an invocation's number is its place in the input.
    ++collected_.invocations;
    std::optional<Refusal> refusal;
    try {
        // Only errors that this system has put into words are the invocation's; others, such as a full memory, are the
        // run's.
        refusal = IsShellLine(arguments) ? CollectShellLine(arguments, workingDirectory, environment, scope)
                                         : CollectLaunched(arguments, workingDirectory, environment, scope);
    } catch (const ZelmException& error) {
        refusal = Refusal{InvocationFate::Unreadable, error.what()};
    }
    if (refusal) {
        Skip(arguments, *std::move(refusal));
    }
}

void InvocationCollector::AddUnreadable(const std::vector<std::string>& arguments, std::string reason) {
    ++collected_.invocations;
    Skip(arguments, {InvocationFate::Unreadable, std::move(reason)});
}

void InvocationCollector::Skip(const std::vector<std::string>& arguments, Refusal refusal) {
    collected_.skipped.push_back({collected_.invocations, refusal.fate,
                                  refusal.what.empty() ? NameOfCommand(arguments) : std::move(refusal.what),
                                  std::move(refusal.reason)});
}

CollectedCommands InvocationCollector::Take() {
    return std::exchange(collected_, {});
}

bool InvocationCollector::PassesFilter(const std::vector<std::string>& arguments) const {
    // By the first word as it is written: what a launcher starts has been brought to the front already.
    const std::vector<std::string>& filter = settings_.compilerFilter;
    const auto passes = [&filter](std::string_view program) {
        return std::any_of(filter.begin(), filter.end(),
                           [program](std::string_view name) { return IsProgramNamed(program, name); });
    };
    return filter.empty() || passes(arguments[0]) ||
           (arguments.size() > 1 && FileNameOf(arguments[0]) == Ccache && passes(arguments[1]));
}

std::optional<InvocationCollector::Refusal> InvocationCollector::Refuse(const std::vector<std::string>& arguments,
                                                                        const std::string& workingDirectory,
                                                                        const Environment& environment) const {
    // From the cheapest question to the dearest, before anything is looked up or started.
    if (arguments[0].empty()) {
        return Refusal{InvocationFate::Unreadable, "the command names no compiler"};
    }
    // The other words are looked at when the files with further arguments are in their place.
    if (HoldsZeroByte(arguments[0]) || HoldsZeroByte(workingDirectory) || HoldsZeroByte(environment)) {
        return Refusal{InvocationFate::Unreadable, ZeroByteReason};
    }
    if (!PassesFilter(arguments)) {
        return Refusal{InvocationFate::OtherCompiler,
                       "the compiler " + Quoted(arguments[0]) + " is not one of those asked for"};
    }
    return std::nullopt;
}

std::optional<InvocationCollector::Refusal>
InvocationCollector::RefuseCompiler(const CompilerIdentifier::Result& identified, const std::string& program) {
    switch (identified.verdict) {
    case IdentificationVerdict::Known:
        break;
    case IdentificationVerdict::Launcher:
        return Refusal{InvocationFate::SkippedLauncher, "ccache command"};
    case IdentificationVerdict::Missing:
        return Refusal{InvocationFate::CompilerUnusable, "the compiler " + Quoted(program) + " was not found"};
    case IdentificationVerdict::Unusable:
        return Refusal{InvocationFate::CompilerUnusable, identified.compiler->fault};
    case IdentificationVerdict::Unknown:
        return Refusal{InvocationFate::UnknownCompiler,
                       "the compiler " + Quoted(identified.compiler->path) + " can't be identified"};
    }
    const CompilerInfo& compiler = *identified.compiler;
    if (compiler.type == CompilerType::Unknown) {
        return Refusal{InvocationFate::UnknownCompiler,
                       "the compiler " + Quoted(compiler.path) + " is of no known family"};
    }
    return std::nullopt;
}

bool InvocationCollector::IsCompiler(std::string_view program) const {
    const std::vector<std::string>& names = settings_.compilerNames;
    return LooksLikeCompiler(program) || std::any_of(names.begin(), names.end(), [program](std::string_view name) {
               return IsProgramNamed(program, name);
           });
}

/// A program that is not known, with a compiler as the first of its words.
bool InvocationCollector::LooksLikeLauncher(const std::vector<std::string>& arguments) const {
    if (IsCompiler(arguments[0]) || FileNameOf(arguments[0]) == Ccache) {
        return false;
    }
    // Long options before the compiler may be the launcher's own. A short one may have a value, which nobody can tell.
    const auto word = std::find_if(arguments.begin() + 1, arguments.end(),
                                   [](std::string_view argument) { return !argument.starts_with("--"); });
    return word != arguments.end() && IsCompiler(*word);
}

/// Takes the compiler's commands of a line that was meant for a shell.
std::optional<InvocationCollector::Refusal>
InvocationCollector::CollectShellLine(const std::vector<std::string>& arguments, const std::string& workingDirectory,
                                      const Environment& environment, EnvironmentScope scope) {
    // Kept when no command of the line could be one of a compiler.
    std::optional<Refusal> refusal = Refusal{InvocationFate::NotACompilation, "no command of a compiler"};
    bool gaveUnits = false;
    for (ShellCommand& command : SplitShellLine(arguments)) {
        const bool mayCompile = std::any_of(command.words.begin(), command.words.end(),
                                            [this](std::string_view word) { return IsCompiler(word); });
        if (!mayCompile) {
            continue;
        }
        const std::string directory =
            command.directory.empty() ? workingDirectory : JoinPath(workingDirectory, command.directory);
        // A command of the line that gives nothing doesn't count where another one gives units: linkers follow
        // compilers.
        std::optional<Refusal> own = CollectLaunched(command.words, directory, environment, scope);
        gaveUnits = gaveUnits || !own;
        refusal = std::move(own);
    }
    return gaveUnits ? std::nullopt : refusal;
}

/// Takes a command with whatever stands in front of its compiler.
std::optional<InvocationCollector::Refusal> InvocationCollector::CollectLaunched(std::vector<std::string>& arguments,
                                                                                 const std::string& workingDirectory,
                                                                                 const Environment& environment,
                                                                                 EnvironmentScope scope) {
    if (arguments.empty()) {
        return Refusal{InvocationFate::Unreadable, "the command string can't be split"};
    }
    // Nearly every command of a build begins with the same compiler: for it, no name is compared with any list.
    if (arguments[0] == plainCompiler_) {
        return Collect(arguments, workingDirectory, environment, scope);
    }
    const LauncherEffects effects = RemoveLaunchers(arguments, settings_.launcherNames);
    if (!effects.otherPurpose.empty()) {
        return Refusal{InvocationFate::NotACompilation, std::string(effects.otherPurpose)};
    }
    if (!effects.any) {
        if (IsCompiler(arguments[0]) && FileNameOf(arguments[0]) != Ccache) {
            plainCompiler_ = arguments[0];
        }
        return Collect(arguments, workingDirectory, environment, scope);
    }
    if (arguments.empty()) {
        return Refusal{InvocationFate::NotACompilation, "no command of a compiler"};
    }
    Environment variables = effects.variables;
    // Inserting leaves alone what is there: the launcher's variables are the ones that the compiler has seen.
    variables.insert(environment.begin(), environment.end());
    const std::string directory =
        effects.directory.empty() ? workingDirectory : JoinPath(workingDirectory, effects.directory);
    return Collect(arguments, directory, variables, scope);
}

/// The words behind unknown flags that are no files: they are kept with the flags. A source that is missing, but would
/// be the command's only one, is a source.
std::vector<std::size_t> InvocationCollector::ValuesOfUnknown(const InvocationOutline& outline,
                                                              const std::vector<std::string>& arguments,
                                                              const std::string& directory) const {
    std::vector<std::size_t> values;
    std::size_t sources = outline.sources.size();
    for (const std::size_t word : outline.openWords) {
        const bool isSource = std::any_of(outline.sources.begin(), outline.sources.end(),
                                          [word](const SourceArgument& source) { return source.index == word; });
        if (PathExists(JoinPath(directory, arguments[word])) || (isSource && sources == 1)) {
            continue;
        }
        sources -= isSource ? 1 : 0;
        log_.VerboseLine("  The flag " + Quoted(arguments[word - 1]) + " is not known: " + Quoted(arguments[word]) +
                         " behind it is no file, and is taken for its value");
        values.push_back(word);
    }
    return values;
}

void InvocationCollector::CompleteArguments(std::vector<std::string>& arguments, const CompilerInfo& compiler,
                                            const std::string& directory, const Environment& environment,
                                            EnvironmentScope scope) {
    if (IsMsvcFamily(compiler.type)) {
        std::vector<const Environment*> layers = {&settings_.environmentChanges, &environment};
        // Where the input gave the whole environment, the driver's own variables had no part in the build.
        if (scope == EnvironmentScope::Changes) {
            layers.push_back(&OwnEnvironment());
        }
        AddArgumentsOfVariables(arguments, layers);
    }
    if (std::any_of(arguments.begin(), arguments.end(), [](std::string_view word) { return word.starts_with('@'); })) {
        ExpandResponseFiles(arguments, directory, ReadingFor(compiler));
    }
}

InvocationOutline InvocationCollector::Outline(const Compiler& model, const std::vector<std::string>& arguments,
                                               const std::string& directory) const {
    InvocationOutline outline = OutlineInvocation(model, arguments);
    if (!outline.sources.empty() && !outline.openWords.empty()) {
        if (std::vector<std::size_t> values = ValuesOfUnknown(outline, arguments, directory); !values.empty()) {
            // A second time: with a word fewer among the inputs, the command may be another thing.
            outline = OutlineInvocation(model, arguments, values);
            const auto shared = std::make_shared<const std::vector<std::size_t>>(std::move(values));
            for (SourceArgument& source : outline.sources) {
                source.openValues = shared;
            }
        }
    }
    return outline;
}

std::optional<InvocationCollector::Refusal>
InvocationCollector::RefuseOutline(const InvocationOutline& outline, const std::vector<std::string>& arguments,
                                   const std::string& directory) const {
    if (outline.missingResponseFile && leavesOutDeleted_ && !outline.makesObjects && outline.sources.empty()) {
        return Refusal{InvocationFate::NotACompilation, "link only"}; // its list of objects has been removed
    }
    if (outline.missingResponseFile) {
        return Refusal{InvocationFate::Unreadable, "the response file " +
                                                       Quoted(arguments[*outline.missingResponseFile].substr(1)) +
                                                       " doesn't exist"};
    }
    if (outline.sources.empty()) {
        return Refusal{InvocationFate::NotACompilation, std::string(outline.reason)};
    }
    if (leavesOutDeleted_ && NoneExists(outline.sources, arguments, directory)) {
        const SourceArgument& first = outline.sources.front();
        return Refusal{InvocationFate::DeletedSinceTrace, "source deleted since the trace",
                       arguments[first.index].substr(first.offset)};
    }
    return std::nullopt;
}

std::optional<InvocationCollector::Refusal> InvocationCollector::Collect(std::vector<std::string>& arguments,
                                                                         const std::string& workingDirectory,
                                                                         const Environment& environment,
                                                                         EnvironmentScope scope) {
    if (std::optional<Refusal> refusal = Refuse(arguments, workingDirectory, environment)) {
        return refusal;
    }
    if (arguments[0] != plainCompiler_ && LooksLikeLauncher(arguments)) {
        return Refusal{InvocationFate::UnknownCompiler,
                       "the program " + Quoted(arguments[0]) +
                           " looks like a launcher: the key \"launcher\" of a settings file makes it one"};
    }
    // A copy: the command may name another directory, further down.
    Directories directories = Share(workingDirectory);
    CompilerIdentifier::Result identified = identifier_.IdentifyCompiler(arguments, *directories.absolute, environment);
    if (std::optional<Refusal> refusal = RefuseCompiler(identified, arguments.front())) {
        return refusal;
    }
    // Before the variables are added: which of them count depends on the family.
    identified.compiler = OfDriverMode(identified.compiler, arguments);
    CompleteArguments(arguments, *identified.compiler, *directories.absolute, environment, scope);
    const Compiler& model = ModelOf(identified.compiler->type);
    // Behind the response files, which may hold the flags that name option files.
    ExpandOptionFiles(arguments, model.OptionFiles(), *directories.absolute);
    if (std::any_of(arguments.begin(), arguments.end(), [](std::string_view word) { return HoldsZeroByte(word); })) {
        return Refusal{InvocationFate::Unreadable, ZeroByteReason};
    }
    const InvocationOutline outline = Outline(model, arguments, *directories.absolute);
    // Files with arguments have been read from the first one: the compiler, too, meets the flag only when it has read
    // them.
    if (!outline.directory.empty()) {
        directories = Share(JoinPath(*directories.absolute, outline.directory));
    }
    if (std::optional<Refusal> refusal = RefuseOutline(outline, arguments, *directories.absolute)) {
        return refusal;
    }
    // Only here, where it is certain that units need it.
    const std::shared_ptr<const Environment> sharedEnvironment = Share(environment);
    for (const SourceArgument& source : outline.sources) {
        collected_.units.push_back({directories.written, directories.absolute, ArgumentList(arguments),
                                    sharedEnvironment, identified.compiler, source, collected_.invocations,
                                    identified.wrapped, scope});
    }
    return std::nullopt;
}

/// How the response files of this compiler's commands are read.
ResponseFileReading InvocationCollector::ReadingFor(const CompilerInfo& compiler) {
    ResponseFileReading reading;
    if (IsMsvcFamily(compiler.type)) {
        reading.compilers = NativeQuoting::Windows;
    } else if (SpeaksGcc(compiler.type)) {
        reading.compilers = NativeQuoting::Gnu;
    }
    reading.isNative = settings_.nativeResponseFiles;
    reading.tellDifference = [this](const std::string& path, const std::string& word, const std::string& native) {
        // Once for each file: a build hands the same one to many commands.
        if (toldResponseFiles_.insert(path).second) {
            log_.Line("The response file " + Quoted(path) + " holds the word " + Quoted(word) +
                      ", which the compiler reads as " + Quoted(native) +
                      ": response-file-quoting=native in a settings file has it read so.");
        }
    };
    return reading;
}

/// A clang that is told to read its command as cl does is a clang-cl.
std::shared_ptr<const CompilerInfo>
InvocationCollector::OfDriverMode(const std::shared_ptr<const CompilerInfo>& compiler,
                                  const std::vector<std::string>& arguments) {
    if (compiler->type != CompilerType::Clang ||
        std::find(arguments.begin(), arguments.end(), "--driver-mode=cl") == arguments.end()) {
        return compiler;
    }
    std::shared_ptr<const CompilerInfo>& inMode = inClMode_[compiler->path];
    if (inMode == nullptr) {
        // A record of its own: other commands use the same program without the flag.
        auto copy = std::make_shared<CompilerInfo>(*compiler);
        copy->type = CompilerType::ClangCl;
        inMode = std::move(copy);
    }
    return inMode;
}

const Compiler& InvocationCollector::ModelOf(CompilerType type) {
    const auto [place, isNew] = models_.try_emplace(type);
    if (isNew) {
        place->second = registry_.Get(type);
    }
    return *place->second;
}

const InvocationCollector::Directories& InvocationCollector::Share(const std::string& workingDirectory) {
    if (lastDirectories_ != nullptr && *lastDirectories_->written == workingDirectory) {
        return *lastDirectories_;
    }
    Directories& directories = directories_[workingDirectory];
    if (directories.written == nullptr) {
        // Asked of the system once for each directory as written, not once for each command.
        const std::string base = baseDirectory_.empty() ? CurrentDirectory() : baseDirectory_;
        directories.written = std::make_shared<const std::string>(workingDirectory);
        directories.absolute = std::make_shared<const std::string>(NormalizePath(JoinPath(base, workingDirectory)));
    }
    lastDirectories_ = &directories;
    return directories;
}

const std::shared_ptr<const Environment>& InvocationCollector::Share(const Environment& environment) {
    // A comparison with the one before is cheaper than the search in the set, which compares with several.
    if (lastEnvironment_ == nullptr || *lastEnvironment_ != environment) {
        lastEnvironment_ = *environments_.insert(std::make_shared<const Environment>(environment)).first;
    }
    return lastEnvironment_;
}

} // namespace Orvanta
