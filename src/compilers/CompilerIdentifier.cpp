#include "compilers/CompilerIdentifier.h"

#include "compilers/CompilerQuestion.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Process.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view LauncherName = "ccache";

struct NameRule {
    std::string_view name;
    FamilyRuling ruling;
};

// These compare with the name without its extension, so that cl.exe is cl. The other rules take the whole file name:
// armcc.exe is asked for its version instead.
constexpr NameRule StemRules[] = {
    {"clang-cl", {CompilerType::ClangCl, "its name without extension is clang-cl"}},
    {"cl", {CompilerType::Cl, "its name without extension is cl"}},
};
// Tried after "contains clang", which "armclang" alone escapes.
constexpr NameRule FileNameRules[] = {
    {"qcc", {CompilerType::Qcc, "its name is qcc"}},
    {"xc8-cc", {CompilerType::XC8, "its name is xc8-cc"}},
    {"armcc", {CompilerType::Keil5, "its name is armcc"}},
    {"armcl", {CompilerType::TiArmCGT, "its name is armcl"}},
};

constexpr std::string_view WhiteSpace = " \t\n\r\v\f";

std::string_view TakeWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(WhiteSpace), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(WhiteSpace));
    text.remove_prefix(word.size());
    return word;
}

// A word such as "V7.80.4" names the release; the compilers before 8 have other options.
FamilyRuling IarGeneration(std::string_view text) {
    for (std::string_view word = TakeWord(text); !word.empty(); word = TakeWord(text)) {
        std::int32_t release = 0;
        if (word.front() == 'V' &&
            std::from_chars(word.data() + 1, word.data() + word.size(), release).ec == std::errc() && release < 8) {
            return {CompilerType::IARArm_v7_OrOlder, "its version text says IAR, of a release before 8"};
        }
    }
    return {CompilerType::IARArm, "its version text says IAR"};
}

std::string VariableLines(const Environment& environment) {
    std::string lines;
    for (const auto& [name, value] : environment) {
        lines.append(lines.empty() ? "" : "\n").append(name).append("=").append(value);
    }
    return lines;
}

// The invocation's variables over the driver's own, the run's changes over both.
Environment ChildEnvironment(const Environment& invocation, const Environment& changes) {
    Environment environment = WithChanges(invocation);
    for (const auto& [name, value] : changes) {
        environment[name] = value;
    }
    return environment;
}

} // namespace

CompilerIdentifier::CompilerIdentifier(const RunSettings& settings, Log& log, const StopFlag& stop)
    : settings_(settings), log_(log), stop_(stop) {}

CompilerIdentifier::Result CompilerIdentifier::IdentifyCompiler(std::vector<std::string>& arguments,
                                                                const std::string& workingDirectory,
                                                                const Environment& environment, Query query) {
    Result result;
    if (arguments.empty()) {
        result.compiler = std::make_shared<CompilerInfo>();
        return result;
    }
    // By its own name only: under a compiler's name it acts as that compiler, and answers for it.
    if (FileNameOf(arguments.front()) == LauncherName) {
        if (!settings_.ignoreCcache || arguments.size() == 1) {
            result.verdict = IdentificationVerdict::Launcher;
            return result;
        }
        arguments.erase(arguments.begin());
        result.wrapped = true;
    }
    LookUp& lookUp = LookUpOf(arguments.front(), workingDirectory, environment);
    if (!lookUp.isJudged) {
        // Not remembered as judged: the same word may be asked about with the other query.
        if (!lookUp.exists && query == Query::IfPresent && !result.wrapped) {
            result.verdict = IdentificationVerdict::Missing;
            result.compiler = lookUp.compiler;
            return result;
        }
        result.compiler = Judge(lookUp.compiler->path, workingDirectory, environment);
        // Not so when this invocation's folder or variables have kept the program from starting: the next one asks
        // again.
        lookUp.isJudged = judged_.contains(lookUp.compiler->path);
        if (lookUp.isJudged) {
            lookUp.compiler = result.compiler;
        }
    } else {
        result.compiler = lookUp.compiler;
    }
    if (result.compiler->type != CompilerType::Unknown) {
        result.verdict = IdentificationVerdict::Known;
    } else if (!result.compiler->fault.empty()) {
        result.verdict = IdentificationVerdict::Unusable;
    }
    return result;
}

const std::string& CompilerIdentifier::SearchPath(const Environment& environment) const {
    static const std::string none;
    for (const Environment* layer : {&settings_.environmentChanges, &environment, &OwnEnvironment()}) {
        if (const std::string* const value = FindVariable(*layer, "PATH")) {
            return *value;
        }
    }
    return none;
}

// The answer depends on the word alone when it is absolute, on the folder too when it is relative, and on the search
// path besides when it is a bare name. The value of PATH is long: its place in the list of those met stands for it.
CompilerIdentifier::LookUp& CompilerIdentifier::LookUpOf(const std::string& program,
                                                         const std::string& workingDirectory,
                                                         const Environment& environment) {
    const bool isAbsolute = IsAbsolutePath(program);
    const bool isBareName = !isAbsolute && FileNameOf(program).size() == program.size();
    const std::string* searchPath = nullptr;
    // In one string that keeps its memory: there is a look-up for each command of the build. No path holds a zero byte,
    // so that the parts can't run into each other.
    key_ = program;
    if (!isAbsolute) {
        key_.append(1, '\0').append(workingDirectory);
    }
    if (isBareName) {
        searchPath = &SearchPath(environment);
        auto known = std::find(searchPaths_.begin(), searchPaths_.end(), *searchPath);
        if (known == searchPaths_.end()) {
            known = searchPaths_.insert(known, *searchPath);
        }
        key_.append(1, '\0').append(std::to_string(known - searchPaths_.begin()));
    }
    const auto remembered = lookUps_.find(key_);
    if (remembered != lookUps_.end()) {
        return remembered->second;
    }
    std::string path = ProgramFileOf(JoinPath(workingDirectory, program));
    // What lies in the invocation's own folder comes before the search path.
    if (isBareName && !IsExecutableFile(path)) {
        const std::string found = FindExecutableIn(program, *searchPath);
        if (!found.empty()) {
            return Remember(key_, AbsolutePath(found), true);
        }
    }
    // Whether it may be executed is not asked: a program that can't be started says why when it is asked for its
    // version.
    const PathAnswer file = LookAt(path);
    const bool exists = file.IsThere() && file.kind != PathKind::Folder;
    return Remember(key_, std::move(path), exists);
}

CompilerIdentifier::LookUp& CompilerIdentifier::Remember(std::string key, std::string path, bool exists) {
    if (log_.IsVerbose()) {
        log_.VerboseLine("Compiler at path: '" + path + "' exists=" + (exists ? "true" : "false"));
    }
    auto info = std::make_shared<CompilerInfo>();
    info->path = std::move(path);
    return lookUps_.emplace(std::move(key), LookUp{std::move(info), exists, false}).first->second;
}

// Remembers the compiler unless it could not be asked for a reason that lies in this invocation.
std::shared_ptr<const CompilerInfo> CompilerIdentifier::Judge(const std::string& path,
                                                              const std::string& workingDirectory,
                                                              const Environment& environment) {
    const auto known = judged_.find(path);
    if (known != judged_.end()) {
        return known->second;
    }
    auto info = std::make_shared<CompilerInfo>();
    info->path = path;
    if (!MayStart(settings_, path)) {
        info->fault = "The compiler \"" + path + "\" lies in none of the folders of --compiler-path";
    } else if (const std::optional<FamilyRuling> ruling = FamilyByName(path)) {
        info->type = ruling->type; // a name that tells saves the start of a program
        info->rule = ruling->rule;
    } else if (!AskForVersion(*info, workingDirectory, environment)) {
        return info;
    }
    if (log_.IsVerbose()) {
        log_.VerboseLine("Compiler family: '" + path + "' is " + std::string(FamilyTitle(info->type)));
    }
    judged_.emplace(path, info);
    return info;
}

// Decides by what the compiler prints for "--version". The type stays unknown when it can't be started, doesn't end, or
// the user wants to stop. False when it never ran because of the folder or the variables, which are this invocation's:
// another one may be able to ask. One that has run is not asked again, whatever came of it.
bool CompilerIdentifier::AskForVersion(CompilerInfo& compiler, const std::string& workingDirectory,
                                       const Environment& environment) {
    const Arguments command = {compiler.path, "--version"};
    const Environment variables = ChildEnvironment(environment, settings_.environmentChanges);
    CapturedOutput output;
    try {
        // From the driver's own folder where that of the invocation is gone: the version does not depend on it.
        const std::string folder = LookAt(workingDirectory).kind == PathKind::Folder ? workingDirectory : std::string();
        const LauncherWords launcher = settings_.childLauncher;
        Process process(command, {folder, EnvironmentBlock(variables), ProcessGroup::Own, launcher},
                        ReceiveAnswer(output.standardOutput), ReceiveAnswer(output.standardError));
        const WaitResult end =
            WaitWithTimeout(process, AnswerTimeout(CompilerQuestionTimeout, launcher), PollInterval, stop_);
        if (!end.finished) {
            process.kill(true);
            // A program that the user has stopped was not too slow.
            if (!stop_.IsSet()) {
                log_.VerboseLine(FillPlaceholders(
                    "Timed out getting compiler version output.\nCommand: %1%\nEnvironment variables:\n%2%",
                    {CommandLineText(command), VariableLines(variables)}));
            }
            return true;
        }
        // Compilers differ in where they print it.
        compiler.version = output.standardOutput + output.standardError;
        // Whatever the program returns: one that refuses the question may have told its name all the same.
        const FamilyRuling ruling = FamilyByVersionText(compiler.version);
        compiler.type = ruling.type;
        compiler.rule = ruling.rule;
        if (end.exitCode != 0) {
            log_.VerboseLine(
                FillPlaceholders("Compiler version output command returned code %1%.\nCommand: %2%\nOutput:\n%3%",
                                 {std::to_string(end.exitCode), CommandLineText(command), compiler.version}));
        }
    } catch (const ProcessStartException& error) {
        compiler.fault = error.what();
        return error.WhatFailed() == ProcessStartException::Cause::Program;
    }
    return true;
}

std::optional<FamilyRuling> FamilyByName(std::string_view path) {
    // The stems come first: "clang-cl" contains "clang".
    const std::string_view stem = StemOf(path);
    if (const NameRule* const rule = FindRow(StemRules, &NameRule::name, stem, EqualsIgnoringCase)) {
        return rule->ruling;
    }
    const std::string_view name = FileNameOf(path);
    if (EqualsIgnoringCase(name, "armclang")) {
        return FamilyRuling{CompilerType::Keil6, "its name is armclang"};
    }
    if (ContainsIgnoringCase(name, "clang")) {
        return FamilyRuling{CompilerType::Clang, "its name contains clang"};
    }
    const NameRule* const rule = FindRow(FileNameRules, &NameRule::name, name, EqualsIgnoringCase);
    return rule != nullptr ? std::optional(rule->ruling) : std::nullopt;
}

FamilyRuling FamilyByVersionText(std::string_view text) {
    if (text.find("IAR") != std::string_view::npos) {
        return IarGeneration(text);
    }
    if (text.starts_with("Microchip MPLAB XC8 C Compiler")) {
        return {CompilerType::XC8, "its version text begins as that of XC8"};
    }
    if (ContainsIgnoringCase(text, "arm embedded") && ContainsIgnoringCase(text, "gnu")) {
        return {CompilerType::GccARM, "its version text says GNU and ARM Embedded"};
    }
    if (ContainsIgnoringCase(text, "apple llvm")) {
        return {CompilerType::Clang, "its version text says Apple LLVM"};
    }
    const std::string_view firstWord = text.substr(0, text.find(' '));
    if (firstWord.find("llvm") != std::string_view::npos || firstWord.find("clang") != std::string_view::npos) {
        return {CompilerType::Clang, "the first word of its version text names clang or llvm"};
    }
    // GCC's text begins with the name under which it was called, which may be any: what nothing else tells is GCC.
    return {CompilerType::Gcc, "it answers --version, and nothing names another family"};
}

} // namespace Orvanta
