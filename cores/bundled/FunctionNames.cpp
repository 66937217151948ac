#include "bundled/FunctionNames.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

// "N::S::" of what stands in the class S of the namespace N; absent where no other unit can name it.
std::optional<std::string> PrefixOf(const CppcheckDump& dump, std::string_view scopeId) {
    constexpr std::size_t Deepest = 100; // where a damaged dump has a circle
    std::string prefix;
    const DumpScope* scope = dump.Scope(scopeId);
    for (std::size_t depth = 0; scope != nullptr && scope->type != "Global"; ++depth) {
        const bool isNamed =
            scope->type == "Namespace" || scope->type == "Class" || scope->type == "Struct" || scope->type == "Union";
        // A template's name holds its arguments.
        if (depth > Deepest || !isNamed || scope->name.empty() || scope->name.find("&lt;") != std::string_view::npos) {
            return std::nullopt;
        }
        prefix.insert(0, std::string(scope->name) + "::");
        scope = dump.Scope(scope->nestedIn);
    }
    return scope == nullptr ? std::nullopt : std::optional(prefix);
}

bool IsIn(const CppcheckDump& dump, const DumpFunction& function, std::string_view type) {
    const DumpScope* const scope = dump.Scope(function.scope);
    return scope != nullptr && scope->type == type;
}

/// Puts a parameter's type together from its tokens, in a form that is the same in every unit: without its name, its
/// default, and what qualifies or begins the name of a type.
class ParameterType {
public:
    void Add(const DumpToken& token) {
        const std::string_view text = token.text;
        if (text == "=") {
            isDefault_ = true;
        }
        if (text == "[") {
            type_ += '*';
            ++openBrackets_;
        } else if (text == "]") {
            --openBrackets_;
        } else if (isDefault_ || openBrackets_ > 0 || !token.variable.empty()) {
            return;
        } else if (text == "::") {
            // Relative to where it stands, a name may be shorter.
            type_.resize(wordBegin_);
        } else {
            AddWord(token);
        }
    }

    // Of its own, a parameter's constness is nobody else's business.
    [[nodiscard]] std::string Take() {
        constexpr std::string_view Const = "const ";
        constexpr std::string_view EndsOfStars = "*;"; // "&" is written as "&amp;"
        const std::size_t stars = type_.find_last_of(EndsOfStars);
        for (std::size_t at = type_.find(Const, stars == std::string::npos ? 0 : stars); at != std::string::npos;
             at = type_.find(Const, at)) {
            type_.erase(at, Const.size());
        }
        while (type_.ends_with(' ')) {
            type_.pop_back();
        }
        return std::exchange(*this, {}).type_;
    }

private:
    void AddWord(const DumpToken& token) {
        for (const std::string_view left : {"struct", "class", "union", "enum", "typename", "register"}) {
            if (token.text == left) {
                return;
            }
        }
        wordBegin_ = type_.size();
        type_ += token.isUnsigned ? "unsigned " : "";
        type_ += token.isLong ? "long " : "";
        const bool isWord = token.text != "*" && !token.text.starts_with("&") && token.text != ",";
        type_ += token.text;
        type_ += isWord ? " " : "";
    }

    std::string type_;
    std::size_t wordBegin_ = 0;
    std::size_t openBrackets_ = 0;
    bool isDefault_ = false;
};

// "(int*,char)" and what follows it of a member function's type.
std::string ParametersOf(const CppcheckDump& dump, const DumpToken& name) {
    const std::vector<DumpToken>& tokens = dump.Tokens();
    std::string text = "(";
    ParameterType type;
    std::size_t depth = 0;
    for (std::size_t i = dump.IndexOf(name) + 1; i < tokens.size(); ++i) {
        const std::string_view word = tokens[i].text;
        if (word == ")" && depth == 1) {
            const std::string last = type.Take();
            const bool isConst = i + 1 < tokens.size() && tokens[i + 1].text == "const";
            return text + (last == "void" ? "" : last) + (isConst ? ")const" : ")");
        }
        if (word == "," && depth == 1) {
            text += type.Take() + ",";
        } else if (depth > 0) {
            type.Add(tokens[i]);
        }
        depth += word == "(" ? 1U : 0U;
        depth -= word == ")" ? 1U : 0U;
    }
    return text;
}

std::set<std::string> FunctionsOfFacts(std::span<const FactGroup> facts) {
    std::set<std::string> places;
    for (const FactGroup& group : facts) {
        for (const std::string& fact : group.facts) {
            for (const std::string_view place : FunctionsOfFact(fact)) {
                places.emplace(place);
            }
        }
    }
    return places;
}

} // namespace

std::string LinkedName(const CppcheckDump& dump, const DumpFunction& function) {
    const DumpToken* const token = dump.Token(function.token);
    const std::optional<std::string> prefix = PrefixOf(dump, function.scope);
    const bool isFree = IsIn(dump, function, "Global") || IsIn(dump, function, "Namespace");
    const bool isTemplate = function.name.find("&lt;") != std::string_view::npos;
    // Of a member, "static" says something else.
    if (token == nullptr || !prefix || !function.isFunction || isTemplate || (isFree && function.isStatic)) {
        return "";
    }
    if (isFree && (!dump.IsCpp() || token->isC)) {
        return std::string(function.name);
    }
    return *prefix + std::string(function.name) + ParametersOf(dump, *token);
}

std::vector<NamedFunction> NameFunctions(const CppcheckDump& dump, std::span<const FactGroup> facts) {
    const std::set<std::string> called = FunctionsOfFacts(facts);
    std::vector<NamedFunction> functions;
    for (const DumpFunction& function : dump.Functions()) {
        const DumpToken* const token = dump.Token(function.token);
        if (token == nullptr || (function.bodyStart.empty() && !called.contains(PlaceOf(*token)))) {
            continue;
        }
        const DumpToken* const body = dump.Token(function.bodyStart);
        NamedFunction named{PlaceOf(*token), LinkedName(dump, function), body == nullptr ? "" : PlaceOf(*body)};
        if (!named.name.empty()) {
            functions.push_back(std::move(named));
        }
    }
    return functions;
}

} // namespace Orvanta
