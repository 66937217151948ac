#include "bundled/ReturnedPointers.h"

#include "bundled/FunctionNames.h"
#include "bundled/XmlTags.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace Orvanta {

namespace {

constexpr const char* Returned = "0"; // arguments are counted from 1

// The value of an expression that may be a null pointer; null when it is not seen to be one.
const DumpValue* NullValue(const CppcheckDump& dump, std::string_view expression) {
    const DumpToken* const token = dump.Token(expression);
    const std::vector<DumpValue>& values = dump.Values(token == nullptr ? std::string_view() : token->values);
    const auto found = std::find_if(values.begin(), values.end(), [](const DumpValue& value) {
        return value.kind == DumpValue::Kind::Number && value.number == 0 && !value.isConditional;
    });
    return found == values.end() ? nullptr : &*found;
}

bool ReturnsPointer(const CppcheckDump& dump, const DumpFunction& function) {
    const DumpToken* const name = dump.Token(function.token);
    const std::size_t index = name == nullptr ? 0 : dump.IndexOf(*name);
    return index > 0 && dump.Tokens()[index - 1].text == "*";
}

/// What the "return" statements of a function say.
struct Returns {
    const DumpToken* null = nullptr; // the first that returns a null pointer
    bool hasOthers = false;
};

// None where a lambda has such statements of its own.
Returns ReturnsOf(const CppcheckDump& dump, const DumpToken& bodyStart) {
    const std::vector<DumpToken>& tokens = dump.Tokens();
    Returns returns;
    std::size_t depth = 0;
    for (std::size_t i = dump.IndexOf(bodyStart); i < tokens.size(); ++i) {
        const DumpToken& token = tokens[i];
        depth += token.text == "{" ? 1U : 0U;
        depth -= token.text == "}" ? 1U : 0U;
        if (dump.BeginsLambda(token.id)) {
            return {};
        }
        if (depth == 0) {
            break;
        }
        if (token.text != "return") {
            continue;
        }
        const DumpValue* const null = NullValue(dump, token.operand1);
        returns.hasOthers = returns.hasOthers || null == nullptr || !null->isKnown;
        if (null != nullptr && returns.null == nullptr) {
            returns.null = &token;
        }
    }
    return returns;
}

// Whether the pointer that the token is, a name or a call, is followed.
bool IsFollowedBy(const DumpToken& token, const DumpToken& pointer) {
    const bool isStar = token.text == "*" && token.operand2.empty();
    return token.operand1 == pointer.id && (isStar || token.text == "[" || token.isArrow);
}

// Where the variable that gets the value at `assignment` is followed before anything is asked; null when it is not.
const DumpToken* FirstUse(const CppcheckDump& dump, const DumpToken& assignment, std::string_view variable) {
    // Behind one of these, something may have been asked that tells of the pointer.
    constexpr std::string_view Ends[] = {"if", "while", "for", "switch",     "goto", "do",     "case",
                                         "?",  "{",     "}",   "&amp;&amp;", "||",   "sizeof", "decltype"};
    const std::vector<DumpToken>& tokens = dump.Tokens();
    std::size_t i = dump.IndexOf(assignment);
    while (i < tokens.size() && tokens[i].text != ";") {
        ++i;
    }
    for (; i + 1 < tokens.size(); ++i) {
        if (std::find(std::begin(Ends), std::end(Ends), tokens[i].text) != std::end(Ends)) {
            return nullptr;
        }
        if (tokens[i].variable == variable) {
            const bool isUsed = IsFollowedBy(tokens[i - 1], tokens[i]) || IsFollowedBy(tokens[i + 1], tokens[i]);
            return isUsed && tokens[i - 1].text != "&amp;" ? &tokens[i] : nullptr;
        }
    }
    return nullptr;
}

// Where the result of the call that `token` is an operator on is followed; null when that is not so.
const DumpToken* UseAt(const CppcheckDump& dump, const DumpToken& token, const DumpToken*& call) {
    call = dump.Token(token.operand1);
    if (call != nullptr && call->text == "(" && IsFollowedBy(token, *call)) {
        return &token;
    }
    call = token.text == "=" ? dump.Token(token.operand2) : nullptr;
    const DumpToken* const left = dump.Token(token.operand1);
    if (call == nullptr || call->text != "(" || left == nullptr || left->variable.empty()) {
        return nullptr;
    }
    return FirstUse(dump, token, left->variable);
}

} // namespace

std::vector<FactGroup> ReturnFacts(const CppcheckDump& dump) {
    FactGroup nulls{"ctu", "", {}};
    for (const DumpFunction& function : dump.Functions()) {
        const DumpToken* const body = dump.Token(function.bodyStart);
        if (body == nullptr || !ReturnsPointer(dump, function) || LinkedName(dump, function).empty()) {
            continue;
        }
        if (const Returns returns = ReturnsOf(dump, *body); returns.null != nullptr) {
            nulls.facts.push_back("<function-call" + XmlAttribute("call-id", PlaceOf(*dump.Token(function.token))) +
                                  XmlAttribute("call-funcname", function.name) + XmlAttribute("call-argnr", Returned) +
                                  PlaceAttributes(*returns.null) + XmlAttribute("call-argexpr", "0") +
                                  XmlAttribute("call-argvaluetype", "0") + XmlAttribute("call-argvalue", "0") +
                                  (returns.hasOthers ? XmlAttribute("warning", "true") : "") + "/>");
        }
    }
    FactGroup uses{"Null pointer", "", {}};
    for (const DumpToken& token : dump.Tokens()) {
        const DumpToken* call = nullptr;
        const DumpToken* const use = UseAt(dump, token, call);
        const DumpFunction* const function = use == nullptr ? nullptr : dump.CalledAt(*call);
        if (function != nullptr && !LinkedName(dump, *function).empty()) {
            uses.facts.push_back("<unsafe-usage" + XmlAttribute("my-id", PlaceOf(*dump.Token(function->token))) +
                                 XmlAttribute("my-argnr", Returned) +
                                 XmlAttribute("my-argname", "what " + std::string(function->name) + "() returns") +
                                 PlaceAttributes(*use) + XmlAttribute("value", "0") + "/>");
        }
    }
    return {nulls, uses};
}

} // namespace Orvanta
