#pragma once

#include "bundled/UnitSettings.h"

#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

/// The sizes of a target's types, in bytes.
struct TypeSizes {
    unsigned intSize = 4;
    unsigned longSize = 4;
    unsigned doubleSize = 8;
    unsigned longDoubleSize = 8;
    unsigned pointerSize = 4; ///< that of size_t too
    unsigned wideSize = 4;    ///< of wchar_t
};

/// A target, by what the engines call it.
struct Target {
    std::string_view clangs;        ///< clang's name of it; empty for this machine
    std::string_view cppchecks;     ///< Cppcheck's; empty when it has none that fits
    std::optional<TypeSizes> sizes; ///< for a platform file then
};

/// The target that a unit is compiled for; nullopt when its word is not known.
[[nodiscard]] std::optional<Target> TargetOf(const UnitSettings& unit);

/// The text of a platform file for Cppcheck.
[[nodiscard]] std::string PlatformFileText(const TypeSizes& sizes, bool isPlainCharUnsigned);

} // namespace Orvanta
