#include "compilers/Keil6.h"

namespace Orvanta {

Keil6::Keil6() : Clang(CompilerType::Keil6) {}

void Keil6::FinishParse(std::span<const std::string> /*arguments*/, ParsedCommand& command) const {
    command.platformWord = "arm";
}

} // namespace Orvanta
