#pragma once

#include "compilers/Compiler.h"
#include "compilers/SourceArgument.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What the reader of a command line makes of each word, for whoever explains it or writes the command in another way.
// The reader itself keeps no such list: it goes through every command of a build.

namespace Orvanta {

/// What becomes of a part of a command when a unit is preprocessed.
enum class WordFate {
    Kept,
    Dropped,
    Source,     ///< the unit's own
    OtherInput, ///< a unit of its own, or the linker's
};

/// One flag with its value, or one input of a command.
struct WordNote {
    std::size_t first = 0;          ///< the first of its arguments
    std::size_t count = 1;          ///< of arguments; those of a list such as "-Wp,A,B" share one
    std::vector<std::string> words; ///< as the compiler gets them, a list taken apart
    std::string handedOnBy;         ///< the flag that hands it on: "-Wp"; empty when it stands by itself
    std::string_view meaning;       ///< what it is to us, such as "include folder"; a constant of the program
    WordFate fate = WordFate::Kept;
    bool isForOutput = false; ///< it says which step is taken, where, or what is written, and not how the text is made
    bool isKnown = true;      ///< there is a rule for the flag
};

/// The parts of a command in their order, compiler left out. `arguments` and `source` are those of a unit, or of its
/// command with response files that are not expanded.
[[nodiscard]] std::vector<WordNote> NoteWords(const Compiler& model, std::span<const std::string> arguments,
                                              const SourceArgument& source);

/// The command's own arguments, compiler left out, without the parts of `left`, those for the output and the other
/// inputs: what is kept stands in its place and its form. `notes` are those of the command, `left` has one for each.
[[nodiscard]] std::vector<std::string> WithoutParts(std::span<const std::string> arguments,
                                                    std::span<const WordNote> notes, const std::vector<bool>& left);

} // namespace Orvanta
