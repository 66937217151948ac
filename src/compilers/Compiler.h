#pragma once

#include "compilers/CompilerType.h"
#include "compilers/FlagTable.h"
#include "compilers/InputKind.h"
#include "compilers/ParsedCommand.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

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
    [[nodiscard]] virtual std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                          const std::string& outputPath) const = 0;

    /// The family's last adjustment of what was read, made when all `arguments` have been seen.
    virtual void FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const;

    /// What a flag makes of every input file, before and behind it; no value when there is no such flag.
    [[nodiscard]] virtual std::optional<InputKind> KindOfAllInputs(std::span<const std::string> arguments) const;

    /// The model that reads what flags such as "-Xclang" hand on.
    [[nodiscard]] virtual const Compiler& ModelOfHandedOn() const;

    [[nodiscard]] CompilerType Type() const noexcept { return type_; }

    /// The family's word in the core's settings, such as "gcc".
    [[nodiscard]] std::string_view Name() const noexcept { return name_; }

    [[nodiscard]] const FlagTable& Flags() const noexcept { return flags_; }

protected:
    Compiler(CompilerType type, std::string_view name, std::span<const std::string_view> introducers, FlagTable flags);

private:
    CompilerType type_;
    std::string_view name_;                         // of a constant of the family's source file
    std::span<const std::string_view> introducers_; // likewise
    FlagTable flags_;
};

} // namespace Orvanta
