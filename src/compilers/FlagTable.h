#pragma once

#include "compilers/FlagEffect.h"
#include "compilers/FlagKind.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

namespace Orvanta {

// A family of compilers is a table: each row holds all that this system knows of one flag, and no other code asks
// again. Most facts follow from the kind, so that a row says its name, its kind, and what is unusual about it:
//
//     {"I", FlagKind::UserInclude},                    a value, glued or in the next argument; kept
//     {"specs=", FlagKind::Keep, FlagFile::Read},      the value is glued, as a name that ends in "=" has it
//     {"Fo", FlagKind::Output, FlagValue::Glued},      never the next argument
//
// The kinds have fixed numbers and mix what a flag means with whether it is kept and has a value. The other columns
// take the latter apart: a switch over the kind would have to be told of every exception.

/// How a flag comes by its value.
enum class FlagValue : std::uint8_t {
    None,        ///< it has none
    GluedOrNext, ///< the rest of the argument, or the next argument when nothing is glued
    Next,        ///< the next argument
    NextTwo,     ///< the next two arguments
    NextThree,
    Glued,        ///< the rest of the argument, however long; never the next argument
    ShortGlued,   ///< likewise, but not after "--"
    Long,         ///< after "=", or the next argument
    List,         ///< glued or the next argument: several values with commas between them
    CommaList,    ///< glued, opened by a comma: several arguments with commas between them
    GluedAndNext, ///< the next argument, whatever is glued to the name
};

/// What a flag has to do with files beside sources, headers and the output.
enum class FlagFile : std::uint8_t {
    None,
    Read,         ///< its value names a file that is read
    ReadAsSpecs,  ///< likewise, and the file may lie behind a search prefix
    Written,      ///< it makes the compiler write one
    AboutWritten, ///< it says something about one that another flag has it write
};

/// All facts about one flag. The name stands without its introducer.
struct FlagRow {
    /// What is unusual about the flag: a FlagEffect, FlagValue or FlagFile each, in any order.
    template <typename... Facts>
    constexpr FlagRow(std::string_view flagName, FlagKind flagKind, Facts... facts)
        : name(flagName), kind(flagKind), value(UsualValue(flagName, flagKind)), isKept(IsUsuallyKept(flagKind)) {
        (Take(facts), ...);
    }

    std::string_view name;
    FlagKind kind;
    FlagEffect effect = FlagEffect::None;
    FlagValue value;
    FlagFile file = FlagFile::None;
    bool isKept; ///< for preprocessing

private:
    // Each puts one fact into its column: the types tell the columns apart, so that a row needs no empty places.
    constexpr void Take(FlagEffect fact) { effect = fact; }

    constexpr void Take(FlagValue fact) { value = fact; }

    constexpr void Take(FlagFile fact) { file = fact; }

    // For the two functions below, which the compiler of this system runs for every row.
    static constexpr bool IsOneOf(FlagKind kind, std::initializer_list<FlagKind> kinds) {
        for (const FlagKind candidate : kinds) {
            if (candidate == kind) {
                return true;
            }
        }
        return false;
    }

    // By kind alone; the kinds that are missing here are kept.
    static constexpr bool IsUsuallyKept(FlagKind kind) {
        return !IsOneOf(kind, {FlagKind::Drop, FlagKind::DropWithValue, FlagKind::Output, FlagKind::NoCompilation,
                               FlagKind::LinkerPart});
    }

    // What a row need not say. A name that ends in "=" is looked at first: it decides whatever the kind is.
    static constexpr FlagValue UsualValue(std::string_view name, FlagKind kind) {
        if (!name.empty() && name.back() == '=') {
            return FlagValue::Glued;
        }
        if (kind == FlagKind::Preprocessor) {
            return FlagValue::CommaList;
        }
        return IsOneOf(kind, {FlagKind::KeepWithValue, FlagKind::Output, FlagKind::UserInclude, FlagKind::SystemInclude,
                              FlagKind::Define, FlagKind::Undefine, FlagKind::DropWithValue, FlagKind::SourceOfLanguage,
                              FlagKind::Language, FlagKind::ForcedInclude, FlagKind::MainFileName})
                   ? FlagValue::GluedOrNext
                   : FlagValue::None;
    }
};

/// What is known of a flag without a row.
inline constexpr FlagRow UnknownFlag = {"", FlagKind::Keep};

/// What a table says about one argument.
struct FlagMatch {
    const FlagRow* row = &UnknownFlag; ///< not null
    std::string_view gluedValue;       ///< the rest of the argument, without the "=" of a long flag
    unsigned following = 0;            ///< the number of arguments behind it that are its value

    /// Whether a row of the table fits; compares the address, as a row may have the contents of UnknownFlag.
    [[nodiscard]] bool IsKnown() const noexcept { return row != &UnknownFlag; }
};

/// A family's flags, made for looking up an argument fast: rows are bucketed by first character. Immutable.
class FlagTable {
public:
    /// Of rows with the same name, the one of the earlier part wins. The names must outlive the table.
    FlagTable(std::initializer_list<std::span<const FlagRow>> parts);

    /// The row that fits `argument`, an argument without its introducer. A row with a value that can be glued fits also
    /// as a beginning; a comma list only when a "," follows it, one with a long value only before a "="; every other
    /// row fits as a whole only. The longest name that fits wins. Names of one letter never fit after "--".
    [[nodiscard]] FlagMatch Find(std::string_view argument, std::string_view introducer) const;

    /// Whether flags without a value state the language of the sources.
    [[nodiscard]] bool StatesLanguage() const noexcept { return statesLanguage_; }

private:
    std::vector<FlagRow> rows_;                // by first character, longest name first
    std::array<std::uint16_t, 257> firstOf_{}; // rows of character c: firstOf_[c] up to firstOf_[c + 1]
    bool statesLanguage_ = false;
};

/// For static_assert: whether every name of a table stands once, and no flag that makes the compiler write is kept.
template <std::size_t Size>
constexpr bool RowsAreSound(const FlagRow (&rows)[Size]) {
    for (std::size_t i = 0; i < Size; ++i) {
        if (rows[i].file == FlagFile::Written && rows[i].isKept) {
            return false;
        }
        // Each with each: it costs the build of this system something, and its users nothing.
        for (std::size_t j = i + 1; j < Size; ++j) {
            if (rows[i].name == rows[j].name) {
                return false;
            }
        }
    }
    return true;
}

} // namespace Orvanta
