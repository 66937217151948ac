#include "app/inspect/Explanation.h"

#include "analysis/UnitSettings.h"
#include "compilers/CommandNotes.h"
#include "compilers/Compiler.h"
#include "platform/ShellText.h"
#include "platform/Text.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace Orvanta {

namespace {

using Json = nlohmann::ordered_json;

const char* NameOf(WordFate fate) {
    switch (fate) {
    case WordFate::Kept:
        return "kept";
    case WordFate::Dropped:
        return "dropped";
    case WordFate::Source:
        return "source";
    case WordFate::OtherInput:
        return "other input";
    }
    return "";
}

const char* NameOf(StandardOrigin origin) {
    switch (origin) {
    case StandardOrigin::Flag:
        return "flag";
    case StandardOrigin::Settings:
        return "settings";
    case StandardOrigin::Compiler:
        return "compiler asked";
    case StandardOrigin::Fallback:
        return "compiler has not answered";
    }
    return "";
}

const char* NameOf(PlatformOrigin origin) {
    switch (origin) {
    case PlatformOrigin::Command:
        return "command";
    case PlatformOrigin::Settings:
        return "settings";
    case PlatformOrigin::Compiler:
        return "compiler asked";
    case PlatformOrigin::Default:
        return "default";
    }
    return "";
}

// The fate in the reader's eyes, where the plan has gone on from there.
std::string FateOf(const WordNote& note, const UnitPlan& plan) {
    const bool leftOut = note.meaning == "precompiled header" && plan.parsed.precompiled.path.empty();
    return leftOut ? "dropped: its header is included by force" : NameOf(note.fate);
}

Json Flags(const UnitPlan& plan) {
    Json flags = Json::array();
    for (const WordNote& note : NoteWords(*plan.model, plan.command->arguments.ToVector(), plan.command->source)) {
        Json flag = {{"words", note.words}, {"meaning", note.meaning}, {"fate", FateOf(note, plan)}};
        if (!note.handedOnBy.empty()) {
            flag["handedOnBy"] = note.handedOnBy;
        }
        flags.push_back(std::move(flag));
    }
    return flags;
}

// What the compiler's environment has beyond the driver's own.
Environment OwnVariables(const UnitPlan& plan) {
    Environment variables;
    for (const std::string& entry : plan.environment->Entries()) {
        const std::size_t equals = entry.find('=', 1); // Windows has names that begin with one
        const std::string name = entry.substr(0, equals);
        const std::string value = entry.substr(std::min(equals, entry.size() - 1) + 1);
        const std::string* const own = FindVariable(OwnEnvironment(), name);
        if (own == nullptr || *own != value) {
            variables.emplace(name, value);
        }
    }
    return variables;
}

Json Settings(const SettingsMap& settings) {
    Json document = Json::object();
    for (const auto& [key, value] : settings) {
        if (!document.contains(key)) {
            document[key] = value;
        } else if (document[key].is_array()) {
            document[key].push_back(value);
        } else {
            document[key] = Json::array({document[key], value});
        }
    }
    return document;
}

void AddTrail(Json& document, const InvocationFacts& facts, std::size_t invocation) {
    document["entry"] = invocation;
    if (facts.line) {
        document["line"] = *facts.line;
    }
    if (facts.trail == nullptr) {
        return;
    }
    document["directory"] = facts.trail->directory;
    document["words"] = facts.trail->words;
    document["launcher"] = facts.trail->launcher;
    Json files = Json::array();
    for (const ExpandedFile& file : facts.trail->files) {
        files.push_back({{"path", file.path}, {"words", file.words}});
    }
    document["responseFiles"] = std::move(files);
}

Json CompilerOf(const CompilerInfo& compiler) {
    std::string_view version = compiler.version;
    return {{"path", compiler.path},
            {"family", FamilyTitle(compiler.type)},
            {"because", compiler.rule},
            {"version", TakeLine(version)}};
}

const char* NameOf(InvocationFate fate) {
    switch (fate) {
    case InvocationFate::NotACompilation:
        return "not a compilation";
    case InvocationFate::UnknownCompiler:
        return "unknown compiler";
    case InvocationFate::OtherCompiler:
        return "another compiler";
    case InvocationFate::SkippedLauncher:
        return "launcher";
    case InvocationFate::CompilerUnusable:
        return "compiler missing";
    case InvocationFate::Unreadable:
        return "unreadable";
    case InvocationFate::DeletedSinceTrace:
        return "source deleted since the trace";
    }
    return "";
}

} // namespace

Json ExplainUnit(const UnitPlan& plan, const InvocationFacts& facts, const RunSettings& settings) {
    const Environment variables = OwnVariables(plan);
    Json document;
    document["source"] = plan.sourcePath;
    AddTrail(document, facts, plan.command->invocation);
    document["runsIn"] = plan.Directory();
    document["compiler"] = CompilerOf(*plan.command->compiler);
    document["flags"] = Flags(plan);
    document["addedFolders"] = settings.extraIncludes;
    document["language"] = UnitLanguage(plan.parsed) == Language::C ? "C" : "C++";
    document["standard"] = {{"word", LastValue(plan.settings, "std").value_or("")},
                            {"from", NameOf(plan.standardOrigin)}};
    document["platform"] = {{"word", LastValue(plan.settings, "platform").value_or("")},
                            {"from", NameOf(plan.platformOrigin)}};
    document["environment"] = {
        {"scope", plan.command->environmentScope == EnvironmentScope::Whole ? "whole" : "changes"},
        {"variables", variables}};
    document["preprocessing"] = {{"arguments", plan.preprocessing},
                                 {"line", ShellLine(plan.Directory(), variables, plan.preprocessing)}};
    document["settings"] = Settings(plan.settings);
    document["analyzed"] = plan.verdict == UnitVerdict::Analyze;
    document["leftOutBy"] = plan.verdictRule;
    return document;
}

Json ExplainSkipped(const SkippedInvocation& skipped, const InvocationFacts& facts) {
    Json document;
    AddTrail(document, facts, skipped.invocation);
    document["fate"] = NameOf(skipped.fate);
    document["reason"] = skipped.reason;
    return document;
}

Json ExplainStanding(const UnitStanding& standing) {
    const char* text = "";
    switch (standing.kind) {
    case UnitStanding::Kind::Unchanged:
        text = "unchanged: its findings are carried over";
        break;
    case UnitStanding::Kind::LeftOut:
        text = "left out, as by its last run";
        break;
    case UnitStanding::Kind::Unknown:
        text = "not known: it runs";
        break;
    case UnitStanding::Kind::InputsChanged:
        text = "its command, settings, variables, compiler or core have changed: it runs";
        break;
    case UnitStanding::Kind::FileChanged:
        text = "a file has changed: it runs";
        break;
    case UnitStanding::Kind::NoResult:
        text = "its last run has given no result: it runs";
        break;
    case UnitStanding::Kind::FindingsLost:
        text = "its findings can't be read: it runs";
        break;
    }
    Json document = {{"standing", text}};
    if (!standing.path.empty()) {
        document["file"] = standing.path;
    }
    return document;
}

} // namespace Orvanta
