#include "compilers/CompilerType.h"

namespace Orvanta {

std::string_view FamilyTitle(CompilerType type) noexcept {
    switch (type) {
    case CompilerType::Unknown:
        return "unknown";
    case CompilerType::Gcc:
        return "GCC";
    case CompilerType::Clang:
        return "Clang";
    case CompilerType::Keil5:
        return "Keil 5";
    case CompilerType::Keil5Gnu:
        return "Keil 5 with GNU extensions";
    case CompilerType::Keil6:
        return "Keil 6";
    case CompilerType::TiArmCGT:
        return "TI ARM";
    case CompilerType::Cl:
        return "cl";
    case CompilerType::ClangCl:
        return "clang-cl";
    case CompilerType::GccARM:
        return "GCC for ARM";
    case CompilerType::IARArm_v7_OrOlder:
        return "IAR for ARM before 8";
    case CompilerType::IARArm:
        return "IAR for ARM";
    case CompilerType::Qcc:
        return "QCC";
    case CompilerType::XC8:
        return "XC8";
    }
    return "unknown";
}

} // namespace Orvanta
