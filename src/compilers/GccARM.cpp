#include "compilers/GccARM.h"

namespace Orvanta {

GccARM::GccARM() : Gcc(CompilerType::GccARM, "gcc", {}) {}

void GccARM::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    for (const std::string& argument : arguments) {
        if (argument == "-fsigned-char") {
            command.unsignedChar = false;
        } else if (argument == "-funsigned-char") {
            command.unsignedChar = true;
        }
    }
    command.platformWord = "arm";
}

} // namespace Orvanta
