#include "compilers/Keil6.h"

namespace Orvanta {

Keil6::Keil6() : Clang(CompilerType::Keil6, CharSign::ByLastFlag) {}

void Keil6::FinishParse(ParsedCommand& command) const {
    Clang::FinishParse(command);
    command.platformWord = "arm";
}

} // namespace Orvanta
