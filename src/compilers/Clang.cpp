#include "compilers/Clang.h"

namespace Orvanta {

namespace {

constexpr FlagRow ClangFlags[] = {
    {"main-file-name", FlagKind::MainFileName},
};

} // namespace

Clang::Clang() : Clang(CompilerType::Clang, CharSign::UnsignedByFlag) {}

Clang::Clang(CompilerType type, CharSign charSign) : Gcc(type, "clang", ClangFlags, charSign) {}

} // namespace Orvanta
