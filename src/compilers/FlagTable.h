#pragma once

#include "compilers/FlagKind.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What a flag says about the whole invocation, beside what its kind says about itself.
enum class FlagEffect : std::uint8_t {
    None,
    Compiles,           ///< an object or assembly file is made, whatever else is asked for
    PreprocessesOnly,   ///< nothing is compiled, unless another flag compiles
    ListsDependencies,  ///< likewise
    PrintsWithoutInput, ///< with no input, only information is printed
    MakesPrecompiledHeader,
    UnknownStandard, ///< a language standard that no row names: standards before it no longer hold
    SignedChar,      ///< plain char is signed
    UnsignedChar,
    NamesC, ///< the file that it names, or every source when it names none, is C
    NamesCpp,
    NamesAssembly,
};

/// How a flag comes by its value.
enum class FlagValue : std::uint8_t {
    OfKind,       ///< as its kind says: none at all, or glued or the next argument
    Glued,        ///< the rest of the argument, however long; never the next argument
    ShortGlued,   ///< likewise, but not after "--"
    Long,         ///< after "=", or the next argument
    List,         ///< glued or the next argument: several values with commas between them
    GluedAndNext, ///< the next argument, whatever is glued to the name
};

/// One fact about a family's command line. The name stands without its introducer.
struct FlagRow {
    std::string_view name;
    FlagKind kind;
    FlagEffect effect = FlagEffect::None;
    FlagValue value = FlagValue::OfKind;
};

/// What a table says about one argument.
struct FlagMatch {
    FlagKind kind = FlagKind::Keep;
    FlagEffect effect = FlagEffect::None;
    bool takesNext = false; ///< the value is the next argument
    bool isList = false;    ///< the value is several, with commas between them
    std::string_view name;
    std::string_view gluedValue; ///< the rest of the argument, without the "=" of a long flag
};

/// A family's flags, made for looking up an argument fast: rows are bucketed by first character. Immutable.
class FlagTable {
public:
    /// A row of `extension` wins over one of `rows` with the same name. The names must outlive the table.
    explicit FlagTable(std::span<const FlagRow> rows, std::span<const FlagRow> extension = {});

    /// The row that fits `argument`, an argument without its introducer. A row whose kind takes a value, whose value is
    /// glued, or whose name ends in "=", fits also as a beginning; a row of the kind Preprocessor without glued value
    /// only when a "," follows it, one with a long value only before a "="; every other row fits as a whole only. The
    /// longest name that fits wins. Names of one letter never fit after "--". No row: FlagKind::Keep and an empty name.
    [[nodiscard]] FlagMatch Find(std::string_view argument, std::string_view introducer) const;

    /// Whether flags without a value state the language of the sources.
    [[nodiscard]] bool StatesLanguage() const noexcept { return statesLanguage_; }

private:
    std::vector<FlagRow> rows_;                // by first character, longest name first
    std::array<std::uint16_t, 257> firstOf_{}; // rows of character c: firstOf_[c] up to firstOf_[c + 1]
    bool statesLanguage_ = false;
};

/// Whether the kind's flags take a value, glued or as the next argument.
[[nodiscard]] bool TakesValue(FlagKind kind) noexcept;

/// For static_assert: whether every name of a table stands once.
template <std::size_t Size>
constexpr bool NamesAreUnique(const FlagRow (&rows)[Size]) {
    for (std::size_t i = 0; i < Size; ++i) {
        for (std::size_t j = i + 1; j < Size; ++j) {
            if (rows[i].name == rows[j].name) {
                return false;
            }
        }
    }
    return true;
}

} // namespace Orvanta
