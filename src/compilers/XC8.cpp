#include "compilers/XC8.h"

#include <algorithm>

namespace Orvanta {

namespace {

// clang-format off
constexpr FlagRow XC8Flags[] = {
    // MPLAB X writes it into every command. It speaks of assembly sources only: a C source stays one.
    {"xassembler-with-cpp", FlagKind::Keep},
    {"fasmfile", FlagKind::Drop}, // writes a listing
};
// clang-format on
static_assert(NamesAreUnique(XC8Flags), "a name stands twice: its second row would never be read");

bool Contains(std::span<const std::string> arguments, std::string_view flag) {
    return std::find(arguments.begin(), arguments.end(), flag) != arguments.end();
}

} // namespace

XC8::XC8() : Gcc(CompilerType::XC8, "gcc", XC8Flags) {}

void XC8::FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const {
    TakeCharSign(arguments, command);
    command.shortFloat = Contains(arguments, "-fno-short-float");
    command.shortDouble = Contains(arguments, "-fno-short-double");
    command.platformWord = "pic8";
}

} // namespace Orvanta
