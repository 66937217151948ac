#pragma once

#include "compilers/CompilerType.h"
#include "compilers/FlagTable.h"
#include "compilers/InputKind.h"
#include "compilers/ParsedCommand.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What this room is for: to know, of a command line as a build wrote it, what is compiled and how, and to write the
// command that gives the same text with the same compiler.
//
// A family of compilers is a table of flags (FlagTable.h) and the few words in which its driver differs (the virtual
// functions below). The readers know no family: ArgumentWalker.h decides what is a flag, what its value and what a
// file, CommandLineReader.h makes records of that. So a family is added without touching what reads the others, and
// what is learned of one flag is written in one row.
//
// What is not known is kept. A flag that nobody has heard of mostly changes the text or does not matter; dropping it
// would give another text in silence, while a flag that the compiler refuses is a failure that is told. Only what
// writes files, or takes the line markers away, has to be known by name. The other way, to list what is kept, was not
// taken: the lists of the compilers have thousands of flags, and grow with each release.

namespace Orvanta {

/// A flag that names a file with further arguments.
struct OptionFileFlag {
    enum class Value {
        Glued,        ///< "-@FILE"
        Next,         ///< "--f FILE"
        GluedOrNext,  ///< "-fFILE" or "-f FILE"
        EqualsOrNext, ///< "--via=FILE" or "--via FILE"
    };

    std::string_view flag; ///< with its introducer
    Value value;
};

/// How a family's command names files with further arguments, and how their text is read: words with white space
/// between them, in which double quotes hold blanks together and a backslash takes the meaning from a quote.
struct OptionFileSyntax {
    std::span<const OptionFileFlag> flags; ///< beside "@FILE"; the first that fits counts
    bool lineComments = false;             ///< a line that begins with ";" or "#" is none
    bool cComments = false;                ///< "//" and "/*" at a word's beginning open comments
    bool viaQuotes = false; ///< apostrophes are quotes, too, and a backslash inside quotes takes a second one's meaning
};

/// The model of a compiler family: reads its command lines by a flag table and builds its preprocessing command.
/// Immutable after construction; shared by all threads.
class Compiler {
public:
    Compiler(const Compiler&) = delete;
    Compiler& operator=(const Compiler&) = delete;
    virtual ~Compiler() = default;

    /// Finds the longest of the family's introducers ("-", "--", "/") with which the argument begins, byte-exact, and
    /// writes it to `introducer` (empty when there is none). False: the argument is no flag.
    virtual bool MatchLongestPrefixFlag(std::string_view argument, std::string_view& introducer) const;

    /// The command that preprocesses the unit into the file at `outputPath`.
    /// Nothing is started or looked at. The kept arguments come first, so that what the stage asks for goes over them.
    [[nodiscard]] virtual std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                          const std::string& outputPath) const = 0;

    /// The family's last adjustment of what was read, made when all arguments have been seen.
    /// StateKindOfSource has been called by then.
    virtual void FinishParse(ParsedCommand& command) const;

    /// What a flag makes of every source, before and behind it; no value when there is no such flag.
    [[nodiscard]] std::optional<InputKind> KindOfAllInputs(std::span<const std::string> arguments) const;

    /// What the compiler takes a file for by its name, when a flag makes `ofAll` of every source.
    /// The file need not exist.
    [[nodiscard]] virtual InputKind KindOfInput(std::string_view path, std::optional<InputKind> ofAll) const;

    /// Adds to the kept arguments what makes the compiler take the source for `kind` where it stands without the flag
    /// that said so.
    virtual void StateKindOfSource(InputKind kind, ParsedCommand& command) const;

    /// Whether plain char is unsigned when no flag states it.
    [[nodiscard]] virtual bool IsPlainCharUnsigned() const noexcept { return false; }

    /// The files with further arguments that are not written "@FILE".
    /// The result refers to constants.
    [[nodiscard]] virtual OptionFileSyntax OptionFiles() const noexcept { return {}; }

    /// The model that reads what flags such as "-Xclang" hand on.
    [[nodiscard]] virtual const Compiler& ModelOfHandedOn() const;

    /// What the program behind the driver knows beside the driver's flags; null when it is not known.
    [[nodiscard]] virtual const FlagTable* FrontEndFlags() const { return nullptr; }

    /// The family that the registry finds this model by. A unit's own type may differ: a flag can make it one of
    /// another mode.
    [[nodiscard]] CompilerType Type() const noexcept { return type_; }

    /// The family's word in the core's settings, such as "gcc".
    [[nodiscard]] std::string_view Name() const noexcept { return name_; }

    /// The flags of the driver itself; valid as long as the model.
    [[nodiscard]] const FlagTable& Flags() const noexcept { return flags_; }

protected:
    /// `name` and `introducers` are kept as views: they must be constants of the program.
    Compiler(CompilerType type, std::string_view name, std::span<const std::string_view> introducers, FlagTable flags);

    /// What every preprocessing command begins with: the words that stand before the compiler, the compiler, and the
    /// kept arguments. `more` is the number of words that will follow.
    [[nodiscard]] static std::vector<std::string> BeginPreprocessCommand(const ParsedCommand& command,
                                                                         std::size_t more);

    /// The source as it stands in a command: a name that a compiler would take for an option or a file with options is
    /// written with its folder.
    [[nodiscard]] static std::string WithFolder(const std::string& source);

private:
    CompilerType type_;
    std::string_view name_;                         // of a constant of the family's source file
    std::span<const std::string_view> introducers_; // likewise
    FlagTable flags_;
};

} // namespace Orvanta
