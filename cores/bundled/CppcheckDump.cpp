#include "bundled/CppcheckDump.h"

#include "bundled/XmlTags.h"
#include "platform/Table.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

template <typename Map>
const typename Map::mapped_type* Find(const Map& map, std::string_view id) {
    const auto found = map.find(id);
    return found == map.end() ? nullptr : &found->second;
}

template <typename Record>
struct FieldRow {
    std::string_view key;
    std::string_view Record::*field;
};

constexpr FieldRow<DumpToken> TokenFields[] = {
    {"id", &DumpToken::id},
    {"file", &DumpToken::file},
    {"linenr", &DumpToken::line},
    {"column", &DumpToken::column},
    {"str", &DumpToken::text},
    {"function", &DumpToken::function},
    {"variable", &DumpToken::variable},
    {"values", &DumpToken::values},
    {"astOperand1", &DumpToken::operand1},
    {"astOperand2", &DumpToken::operand2},
    {"valueType-type", &DumpToken::type},
};

constexpr FieldRow<DumpScope> ScopeFields[] = {
    {"type", &DumpScope::type},         {"className", &DumpScope::name},      {"nestedIn", &DumpScope::nestedIn},
    {"function", &DumpScope::function}, {"bodyStart", &DumpScope::bodyStart},
};

constexpr FieldRow<DumpFunction> FunctionFields[] = {
    {"id", &DumpFunction::id},
    {"name", &DumpFunction::name},
    {"tokenDef", &DumpFunction::token},
};

// Whether the attribute is one of the table.
template <typename Rows, typename Record>
bool SetField(const Rows& rows, Record& record, std::string_view key, std::string_view value) {
    const FieldRow<Record>* const row = FindRow(rows, &FieldRow<Record>::key, key);
    if (row != nullptr) {
        record.*(row->field) = value;
    }
    return row != nullptr;
}

} // namespace

CppcheckDump::CppcheckDump(std::string_view xml) {
    for (std::size_t position = 0;;) {
        const XmlTag tag = NextTag(xml, position);
        position = tag.end;
        const std::string_view name = tag.Name();
        if (name == "rawtokens") {
            // The same tokens once more, as they were before.
            position = xml.find("</rawtokens>", position);
        } else if (name == "/dumps") {
            break;
        } else {
            AddElement(name, tag.text);
        }
    }
    for (DumpFunction& function : functions_) {
        if (const std::string_view* const body = Find(bodies_, function.id)) {
            function.bodyStart = *body;
        }
    }
}

void CppcheckDump::AddElement(std::string_view name, std::string_view tag) {
    if (name == "token") {
        AddToken(tag);
    } else if (name == "scope") {
        AddScope(tag);
    } else if (name == "function") {
        AddFunction(tag);
    } else if (name == "arg" && !functions_.empty()) {
        ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
            if (key == "variable") {
                functions_.back().arguments.push_back(value);
            }
        });
    } else if (name == "var") {
        AddVariable(tag);
    } else if (name == "values") {
        ForEachAttribute(tag, [&](std::string_view, std::string_view value) { openValues_ = value; });
    } else if (name == "value") {
        AddValue(tag);
    } else if (name == "dumps" || name == "platform") {
        ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
            isCpp_ = isCpp_ || value == "cpp";
            bits_[key] = WholeNumber<std::int64_t>(value).value_or(0);
        });
    }
}

void CppcheckDump::AddToken(std::string_view tag) {
    DumpToken token;
    ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
        if (SetField(TokenFields, token, key, value)) {
            return;
        }
        if (key == "valueType-pointer") {
            token.pointers = WholeNumber<unsigned>(value).value_or(0);
        } else if (key == "originalName") {
            token.isArrow = value == "->";
        } else if (key == "externLang") {
            token.isC = value == "C";
        } else if (key == "isUnsigned") {
            token.isUnsigned = true;
        } else if (key == "isLong") {
            token.isLong = true;
        }
    });
    tokensById_.emplace(token.id, tokens_.size());
    tokens_.push_back(token);
}

void CppcheckDump::AddScope(std::string_view tag) {
    DumpScope scope;
    ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
        SetField(ScopeFields, scope, key, value);
        if (key == "id") {
            openScope_ = value;
        }
    });
    if (scope.type == "Function") {
        bodies_.emplace(scope.function, scope.bodyStart);
    } else if (scope.type == "Lambda") {
        lambdas_.insert(scope.bodyStart);
    }
    scopes_.emplace(openScope_, scope);
}

void CppcheckDump::AddFunction(std::string_view tag) {
    DumpFunction function;
    function.scope = openScope_;
    ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
        SetField(FunctionFields, function, key, value);
        if (key == "type") {
            function.isFunction = value == "Function";
        } else if (key == "isStatic") {
            function.isStatic = value == "true";
        } else if (key == "hasVirtualSpecifier" || key == "isImplicitlyVirtual") {
            function.isVirtual = function.isVirtual || value == "true";
        }
    });
    functionsById_.emplace(function.id, functions_.size());
    functions_.push_back(std::move(function));
}

void CppcheckDump::AddVariable(std::string_view tag) {
    DumpVariable variable;
    std::string_view id;
    ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
        if (key == "id") {
            id = value;
        } else if (key == "nameToken") {
            variable.nameToken = value;
        } else if (key == "isArray") {
            variable.isArray = value == "true";
        } else if (key == "isClass") {
            variable.isClass = value == "true";
        } else if (key == "isReference") {
            variable.isReference = value == "true";
        }
    });
    // In the scopes it is named only.
    if (!variable.nameToken.empty()) {
        variables_.emplace(id, variable);
    }
}

void CppcheckDump::AddValue(std::string_view tag) {
    DumpValue result;
    const auto set = [&result](DumpValue::Kind kind, std::string_view number) {
        result.kind = kind;
        result.number = WholeNumber<std::int64_t>(number).value_or(-1);
    };
    bool isUncertain = false;
    ForEachAttribute(tag, [&](std::string_view key, std::string_view value) {
        if (key == "intvalue") {
            set(DumpValue::Kind::Number, value);
        } else if (key == "uninit") {
            set(DumpValue::Kind::Uninitialized, value);
        } else if (key == "buffer-size") {
            set(DumpValue::Kind::BufferSize, value);
        } else if (key == "known") {
            result.isKnown = true;
        } else if (key == "condition-line") {
            result.isConditional = true;
        } else if (key == "impossible" || key == "inconclusive") {
            isUncertain = true;
        }
    });
    // What Cppcheck itself would not tell is a value all the same, so that the others are not the only ones.
    result.kind = isUncertain ? DumpValue::Kind::Other : result.kind;
    values_[openValues_].push_back(result);
}

const DumpToken* CppcheckDump::Token(std::string_view id) const {
    const std::size_t* const place = Find(tokensById_, id);
    return place == nullptr ? nullptr : &tokens_[*place];
}

const DumpFunction* CppcheckDump::Function(std::string_view id) const {
    const std::size_t* const place = Find(functionsById_, id);
    return place == nullptr ? nullptr : &functions_[*place];
}

const DumpScope* CppcheckDump::Scope(std::string_view id) const {
    return Find(scopes_, id);
}

const DumpVariable* CppcheckDump::Variable(std::string_view id) const {
    return Find(variables_, id);
}

const DumpFunction* CppcheckDump::CalledAt(const DumpToken& parenthesis) const {
    const DumpToken* name = parenthesis.text == "(" ? Token(parenthesis.operand1) : nullptr;
    if (name != nullptr && (name->text == "." || name->text == "::")) {
        // "::set(0)" has one operand.
        name = Token(name->operand2.empty() ? name->operand1 : name->operand2);
    }
    const DumpFunction* const function = name == nullptr ? nullptr : Function(name->function);
    return function == nullptr || function->isVirtual || Token(function->token) == nullptr ? nullptr : function;
}

const std::vector<DumpValue>& CppcheckDump::Values(std::string_view id) const {
    static const std::vector<DumpValue> none;
    const std::vector<DumpValue>* const values = Find(values_, id);
    return values == nullptr ? none : *values;
}

std::int64_t CppcheckDump::SizeOf(std::string_view type, unsigned pointers) const {
    std::string key(pointers > 0 ? "pointer" : type);
    for (char& character : key) {
        character = character == ' ' ? '_' : character;
    }
    const std::int64_t* const bits = Find(bits_, key + "_bit");
    const std::int64_t* const byteBits = Find(bits_, "char_bit");
    return bits == nullptr || byteBits == nullptr || *byteBits == 0 ? 0 : *bits / *byteBits;
}

std::string PlaceOf(const DumpToken& token) {
    return std::string(token.file) + ":" + std::string(token.line) + ":" + std::string(token.column);
}

std::string PlaceAttributes(const DumpToken& token) {
    return XmlAttribute("file", token.file) + XmlAttribute("line", token.line) + XmlAttribute("col", token.column);
}

} // namespace Orvanta
