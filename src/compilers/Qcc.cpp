#include "compilers/Qcc.h"

namespace Orvanta {

namespace {

// clang-format off
constexpr FlagRow QccFlags[] = {
    {"Wc", FlagKind::Preprocessor}, // a list of arguments for the compiler itself, which preprocesses
    // In front of GCC's row of this name.
    {"P", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"lang-c", FlagKind::Keep, FlagEffect::NamesC},
    {"lang-c++", FlagKind::Keep, FlagEffect::NamesCpp},

    // The version and target of the GCC behind it, and the C++ library. They decide where headers are looked for.
    {"V", FlagKind::KeepWithValue},
    {"Y", FlagKind::KeepWithValue},
};
// clang-format on
static_assert(RowsAreSound(QccFlags), "a name stands twice, or a flag is kept that makes the compiler write a file");

} // namespace

Qcc::Qcc() : Gcc(CompilerType::Qcc, "gcc", QccFlags, CharSign::UnsignedByFlag) {}

} // namespace Orvanta
