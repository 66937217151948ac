#include "compilers/GccARM.h"

namespace Orvanta {

GccARM::GccARM() : Gcc(CompilerType::GccARM, "gcc", {}, CharSign::ByLastFlag) {}

void GccARM::FinishParse(ParsedCommand& command) const {
    command.platformWord = "arm";
}

} // namespace Orvanta
