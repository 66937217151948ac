#include "bundled/MemberCalls.h"

#include "bundled/XmlTags.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

namespace {

// What Cppcheck's facts call the kinds of values.
enum class FactValue { Number = 0, Uninitialized = 4, BufferSize = 7 };

/// A call of a function that is named through something.
struct Call {
    const DumpToken* parenthesis;
    const DumpFunction* function;
    const DumpToken* declaration; // the function's first
};

std::optional<Call> CallAt(const CppcheckDump& dump, const DumpToken& token) {
    const DumpToken* const left = token.text == "(" ? dump.Token(token.operand1) : nullptr;
    if (left == nullptr || token.operand2.empty() || (left->text != "." && left->text != "::")) {
        return std::nullopt;
    }
    const DumpFunction* const function = dump.CalledAt(token);
    return function == nullptr ? std::nullopt : std::optional(Call{&token, function, dump.Token(function->token)});
}

// "a, b, c" is a tree that goes down on its left. Damaged, it could have no end.
std::vector<const DumpToken*> ArgumentsOf(const CppcheckDump& dump, const DumpToken* token) {
    constexpr std::size_t Most = 1000;
    std::vector<const DumpToken*> arguments;
    while (token != nullptr && arguments.size() < Most) {
        const bool isList = token->text == ",";
        arguments.push_back(isList ? dump.Token(token->operand2) : token);
        token = isList ? dump.Token(token->operand1) : nullptr;
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

// The bytes of an array of one dimension, as it is declared; 0 when they are not known.
std::int64_t ArraySize(const CppcheckDump& dump, const DumpToken& argument) {
    const DumpVariable* const variable = dump.Variable(argument.variable);
    const DumpToken* const name = variable == nullptr ? nullptr : dump.Token(variable->nameToken);
    if (name == nullptr || !variable->isArray || argument.pointers == 0) {
        return 0;
    }
    const std::vector<DumpToken>& tokens = dump.Tokens();
    const std::size_t next = dump.IndexOf(*name) + 1;
    if (next + 3 >= tokens.size() || tokens[next].text != "[" || tokens[next + 2].text != "]" ||
        tokens[next + 3].text == "[") {
        return 0;
    }
    return WholeNumber<std::int64_t>(tokens[next + 1].text).value_or(0) *
           dump.SizeOf(argument.type, argument.pointers - 1);
}

/// Writes the facts of one call.
class CallWriter {
public:
    CallWriter(const CppcheckDump& dump, const Call& call, std::vector<std::string>& facts)
        : dump_(dump), call_(call), facts_(facts) {}

    void Add(std::size_t number, const DumpToken& argument) {
        number_ = number;
        for (const DumpValue& value : dump_.Values(argument.values)) {
            if (value.kind == DumpValue::Kind::Number && value.number == 0) {
                Write(argument, FactValue::Number, 0, value.isConditional);
            } else if (value.kind == DumpValue::Kind::BufferSize) {
                Write(argument, FactValue::BufferSize, value.number, value.isConditional);
            }
        }
        const DumpToken* const addressed =
            argument.text == "&amp;" && argument.operand2.empty() ? dump_.Token(argument.operand1) : nullptr;
        std::int64_t size = ArraySize(dump_, argument);
        if (addressed != nullptr && dump_.Variable(addressed->variable) != nullptr &&
            !dump_.Variable(addressed->variable)->isArray) {
            size = dump_.SizeOf(addressed->type, addressed->pointers);
        }
        if (size > 0) {
            Write(argument, FactValue::BufferSize, size, false);
        }
        AddUninitialized(addressed != nullptr ? addressed : Referenced(argument));
    }

private:
    // The argument itself, where the function takes it by reference.
    [[nodiscard]] const DumpToken* Referenced(const DumpToken& argument) const {
        const std::vector<std::string_view>& parameters = call_.function->arguments;
        const DumpVariable* const parameter =
            number_ > parameters.size() ? nullptr : dump_.Variable(parameters[number_ - 1]);
        return parameter != nullptr && parameter->isReference ? &argument : nullptr;
    }

    void AddUninitialized(const DumpToken* variable) {
        if (variable == nullptr || variable->pointers > 0 || dump_.Values(variable->values).size() != 1) {
            return;
        }
        const DumpVariable* const declared = dump_.Variable(variable->variable);
        const bool isClass = declared != nullptr && declared->isClass;
        if (!isClass && dump_.Values(variable->values).front().kind == DumpValue::Kind::Uninitialized) {
            Write(*variable, FactValue::Uninitialized, 0, false);
        }
    }

    void Write(const DumpToken& argument, FactValue kind, std::int64_t value, bool isConditional) {
        facts_.push_back("<function-call" + XmlAttribute("call-id", PlaceOf(*call_.declaration)) +
                         XmlAttribute("call-funcname", call_.function->name) +
                         XmlAttribute("call-argnr", std::to_string(number_)) + PlaceAttributes(*call_.parenthesis) +
                         XmlAttribute("call-argexpr", argument.text) +
                         XmlAttribute("call-argvaluetype", std::to_string(static_cast<int>(kind))) +
                         XmlAttribute("call-argvalue", std::to_string(value)) +
                         (isConditional ? XmlAttribute("warning", "true") : "") + "/>");
    }

    const CppcheckDump& dump_;
    const Call& call_;
    std::vector<std::string>& facts_;
    std::size_t number_ = 0; // of the argument, from 1
};

} // namespace

FactGroup MemberCallFacts(const CppcheckDump& dump) {
    FactGroup group{"ctu", "", {}};
    for (const DumpToken& token : dump.Tokens()) {
        const std::optional<Call> call = CallAt(dump, token);
        if (!call) {
            continue;
        }
        const std::vector<const DumpToken*> arguments = ArgumentsOf(dump, dump.Token(token.operand2));
        CallWriter writer(dump, *call, group.facts);
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            if (arguments[i] != nullptr) {
                writer.Add(i + 1, *arguments[i]);
            }
        }
    }
    return group;
}

} // namespace Orvanta
