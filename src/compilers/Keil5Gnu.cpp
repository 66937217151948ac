#include "compilers/Keil5Gnu.h"

namespace Orvanta {

Keil5Gnu::Keil5Gnu() : Keil5(CompilerType::Keil5Gnu, "keil5_gnu") {}

} // namespace Orvanta
