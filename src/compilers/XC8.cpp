#include "compilers/XC8.h"

namespace Orvanta {

namespace {

// clang-format off
constexpr FlagRow XC8Flags[] = {
    // MPLAB X writes it into every command. It speaks of assembly sources only: a C source stays one.
    {"xassembler-with-cpp", FlagKind::Keep},
    {"fasmfile", FlagKind::Drop, FlagFile::Written}, // a listing
    {"fno-short-float", FlagKind::Keep, FlagEffect::ShortFloat},
    {"fno-short-double", FlagKind::Keep, FlagEffect::ShortDouble},
};
// clang-format on
static_assert(RowsAreSound(XC8Flags), "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

XC8::XC8() : Gcc(CompilerType::XC8, "gcc", XC8Flags, CharSign::ByLastFlag) {}

void XC8::FinishParse(ParsedCommand& command) const {
    command.platformWord = "pic8";
}

} // namespace Orvanta
