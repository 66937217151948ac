#include "bundled/Targets.h"

#include "platform/Paths.h"
#include "platform/Table.h"

namespace Orvanta {

namespace {

struct TargetRow {
    std::string_view word;
    Target target;
};

// The instruction set does not matter, the sizes of types do: XC8's are those that clang knows of AVR.
constexpr TargetRow Rows[] = {
    {"linux64", {"x86_64-pc-linux-gnu", "unix64", {}}},
    {"linux32", {"i686-pc-linux-gnu", "unix32", {}}},
    {"Win32", {"i686-pc-windows-msvc", "win32W", {}}},
    {"arm", {"armv7-none-eabi", "", TypeSizes{4, 4, 8, 8, 4, 4}}},
    {"arm64", {"aarch64-none-elf", "", TypeSizes{4, 8, 8, 16, 8, 4}}},
    {"msp430", {"msp430-none-elf", "", TypeSizes{2, 4, 8, 8, 2, 2}}},
    {"avr8", {"avr", "", TypeSizes{2, 4, 4, 4, 2, 2}}},
    {"pic8", {"avr", "", TypeSizes{2, 4, 4, 4, 2, 2}}},
};

// "x64" is also the word for a unit whose command tells no platform.
// The family of the compiler and this system decide then.
Target TargetOf64Bits(const UnitSettings& unit) {
    if (unit.preprocessor == "visualcpp") {
        return {"x86_64-pc-windows-msvc", "win64", {}};
    }
    return HostPathRules() == PathRules::Posix ? Target{"", "unix64", {}}
                                               : Target{"x86_64-w64-windows-gnu", "win64", {}};
}

void AppendSize(std::string& text, std::string_view type, unsigned size) {
    text.append("    <").append(type).append(">").append(std::to_string(size));
    text.append("</").append(type).append(">\n");
}

} // namespace

std::optional<Target> TargetOf(const UnitSettings& unit) {
    if (unit.platform == "x64") {
        return TargetOf64Bits(unit);
    }
    const TargetRow* const row = FindRow(Rows, &TargetRow::word, unit.platform);
    return row != nullptr ? std::optional(row->target) : std::nullopt;
}

std::string PlatformFileText(const TypeSizes& sizes, bool isPlainCharUnsigned) {
    std::string text = "<?xml version=\"1.0\"?>\n<platform>\n  <char_bit>8</char_bit>\n  <default-sign>";
    text.append(isPlainCharUnsigned ? "unsigned" : "signed").append("</default-sign>\n  <sizeof>\n");
    AppendSize(text, "bool", 1);
    AppendSize(text, "short", 2);
    AppendSize(text, "int", sizes.intSize);
    AppendSize(text, "long", sizes.longSize);
    AppendSize(text, "long-long", 8);
    AppendSize(text, "float", 4);
    AppendSize(text, "double", sizes.doubleSize);
    AppendSize(text, "long-double", sizes.longDoubleSize);
    AppendSize(text, "pointer", sizes.pointerSize);
    AppendSize(text, "size_t", sizes.pointerSize);
    AppendSize(text, "wchar_t", sizes.wideSize);
    return text + "  </sizeof>\n</platform>\n";
}

} // namespace Orvanta
