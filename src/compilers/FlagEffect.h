#pragma once

#include <cstdint>

// A flag has one kind, which says what becomes of its words, and one effect, which says what it makes of the
// invocation. They are two columns because they vary apart: a flag for a language may be kept or dropped, have a value
// or none.

namespace Orvanta {

/// What a flag says about the whole invocation, beside what its kind says about itself.
enum class FlagEffect : std::uint8_t {
    None,
    Compiles,           ///< an object or assembly file is made, whatever else is asked for
    StopsBeforeLinking, ///< likewise, unless the sources are only preprocessed
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
    NamesTarget,       ///< its value is the triple of the target
    NamesDirectory,    ///< its value is the folder from which relative paths count
    NamesPrecompiled,  ///< its value is a precompiled header that is taken for its text
    UsesModules,       ///< headers may be taken from modules
    NamesSearchPrefix, ///< its value is where the driver looks for its parts before all other places
    NamesStandard,     ///< its value is a standard, as "std=" has it
    NamesMachine,      ///< its value is a machine, as "m" has it
    GnuExtensions,     ///< a mode of armcc
    ShortFloat,        ///< XC8's flags for its floating-point types
    ShortDouble,
    Coroutines, ///< cl's first form of coroutines is on
};

/// The effects of all flags of a command, as a set.
class FlagEffects {
public:
    /// Adds one effect. None may be added, too: nobody asks for it.
    constexpr void Add(FlagEffect effect) noexcept { bits_ |= Bit(effect); }

    /// Whether any flag of the command has it.
    [[nodiscard]] constexpr bool Has(FlagEffect effect) const noexcept { return (bits_ & Bit(effect)) != 0; }

private:
    static constexpr std::uint32_t Bit(FlagEffect effect) noexcept {
        return std::uint32_t{1} << static_cast<unsigned>(effect);
    }

    // One bit for each effect: there is room for 32.
    std::uint32_t bits_ = 0;
};

} // namespace Orvanta
