#include "compilers/GccARM.h"

namespace Orvanta {

GccARM::GccARM() : Gcc(CompilerType::GccARM, "gcc", {}) {}

void GccARM::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    TakeCharSign(arguments, command);
    command.platformWord = "arm";
}

} // namespace Orvanta
