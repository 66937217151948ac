#pragma once

#include <cstdint>
#include <string_view>

// A release or a mode of a compiler is a family of its own where its command has to be written in another way, or where
// the core knows it by another name. Other differences between releases make none.

namespace Orvanta {

/// The compiler families; the numbers are fixed.
enum class CompilerType : std::uint8_t {
    Unknown = 0, ///< not a compiler that the system can handle
    Gcc = 1,
    Clang = 2,
    Keil5 = 3,
    Keil5Gnu = 4,
    Keil6 = 5,
    TiArmCGT = 6,
    Cl = 7,
    ClangCl = 8,
    GccARM = 9,
    IARArm_v7_OrOlder = 10,
    IARArm = 11,
    Qcc = 12,
    XC8 = 13,
};

/// Whether the family is Microsoft's: cl or clang-cl.
[[nodiscard]] constexpr bool IsMsvcFamily(CompilerType type) noexcept {
    return type == CompilerType::Cl || type == CompilerType::ClangCl;
}

/// Whether the family's driver reads GCC's argument language.
[[nodiscard]] constexpr bool SpeaksGcc(CompilerType type) noexcept {
    return type == CompilerType::Gcc || type == CompilerType::Clang || type == CompilerType::Keil6 ||
           type == CompilerType::GccARM || type == CompilerType::Qcc || type == CompilerType::XC8;
}

/// What people call the family, such as "Keil 5".
[[nodiscard]] std::string_view FamilyTitle(CompilerType type) noexcept;

} // namespace Orvanta
