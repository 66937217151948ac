#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Orvanta {

/// A token of the dump. The dump's elements refer to each other by ids; one that is empty or "0" is none.
struct DumpToken {
    std::string_view id;
    std::string_view file;
    std::string_view line;
    std::string_view column;
    std::string_view text; ///< as it is written in XML
    std::string_view function;
    std::string_view variable;
    std::string_view values;
    std::string_view operand1;
    std::string_view operand2;
    std::string_view type; ///< of its value, such as "int" or "record"
    unsigned pointers = 0; ///< of its value: how many stars
    bool isArrow = false;  ///< a "." that was written as "->"
    bool isC = false;      ///< stands in an extern "C"
    bool isUnsigned = false;
    bool isLong = false;
};

struct DumpScope {
    std::string_view type; ///< such as "Namespace"
    std::string_view name; ///< empty when it has none
    std::string_view nestedIn;
    std::string_view function;  ///< whose body it is
    std::string_view bodyStart; ///< the token that begins it
};

struct DumpFunction {
    std::string_view id;
    std::string_view name;
    std::string_view token; ///< its first declaration
    std::string_view scope;
    std::string_view bodyStart;              ///< empty when this unit does not define it
    std::vector<std::string_view> arguments; ///< their variables
    bool isFunction = false;                 ///< and no constructor, operator or their like
    bool isStatic = false;
    bool isVirtual = false;
};

struct DumpVariable {
    std::string_view nameToken;
    bool isArray = false;
    bool isClass = false;
    bool isReference = false;
};

/// A value that an expression may have.
struct DumpValue {
    enum class Kind { Number, Uninitialized, BufferSize, Other };
    Kind kind = Kind::Other;
    std::int64_t number = 0;
    bool isKnown = false;       ///< the only one
    bool isConditional = false; ///< only if some condition has the outcome that it is tested for
};

/// What `cppcheck --dump` tells of a unit: its tokens as a tree of expressions, what they are, and their values.
/// Views of the text that it was made of, which must outlive it.
class CppcheckDump {
public:
    /// \throws ZelmException when the text is cut short
    explicit CppcheckDump(std::string_view xml);

    [[nodiscard]] const std::vector<DumpToken>& Tokens() const noexcept { return tokens_; }

    [[nodiscard]] const std::vector<DumpFunction>& Functions() const noexcept { return functions_; }

    [[nodiscard]] bool IsCpp() const noexcept { return isCpp_; }

    /// Where one of the tokens stands among them.
    [[nodiscard]] std::size_t IndexOf(const DumpToken& token) const {
        return static_cast<std::size_t>(&token - tokens_.data());
    }

    /// Each null when there is none of the id.
    [[nodiscard]] const DumpToken* Token(std::string_view id) const;
    [[nodiscard]] const DumpFunction* Function(std::string_view id) const;
    [[nodiscard]] const DumpScope* Scope(std::string_view id) const;
    [[nodiscard]] const DumpVariable* Variable(std::string_view id) const;

    /// The function that is called where the parenthesis stands; null when it is not known, or when it is virtual, so
    /// that another one may be.
    [[nodiscard]] const DumpFunction* CalledAt(const DumpToken& parenthesis) const;

    /// Whether a lambda's body begins with the token.
    [[nodiscard]] bool BeginsLambda(std::string_view id) const { return lambdas_.contains(id); }

    /// Empty for an id that is not known.
    [[nodiscard]] const std::vector<DumpValue>& Values(std::string_view id) const;

    /// The bytes of a value of the type; 0 when they are not known.
    [[nodiscard]] std::int64_t SizeOf(std::string_view type, unsigned pointers) const;

private:
    using Places = std::unordered_map<std::string_view, std::size_t>;

    void AddElement(std::string_view name, std::string_view tag);
    void AddToken(std::string_view tag);
    void AddScope(std::string_view tag);
    void AddFunction(std::string_view tag);
    void AddVariable(std::string_view tag);
    void AddValue(std::string_view tag);

    std::vector<DumpToken> tokens_;
    std::vector<DumpFunction> functions_;
    Places tokensById_;
    Places functionsById_;
    std::unordered_map<std::string_view, DumpScope> scopes_;
    std::unordered_map<std::string_view, DumpVariable> variables_;
    std::unordered_map<std::string_view, std::vector<DumpValue>> values_;
    std::unordered_map<std::string_view, std::int64_t> bits_; // by type
    // While it is read: what the elements that come next belong to.
    std::string_view openScope_;
    std::string_view openValues_;
    // Bodies are told where scopes are, before or after the functions themselves.
    std::unordered_map<std::string_view, std::string_view> bodies_;
    std::unordered_set<std::string_view> lambdas_; // the tokens that begin their bodies
    bool isCpp_ = false;
};

/// "file:line:column", as Cppcheck's facts tell functions apart.
[[nodiscard]] std::string PlaceOf(const DumpToken& token);

/// The same as the attributes of a fact that stands there.
[[nodiscard]] std::string PlaceAttributes(const DumpToken& token);

} // namespace Orvanta
