#include "compilers/Clang.h"

namespace Orvanta {

namespace {

constexpr FlagRow ClangFlags[] = {
    {"main-file-name", FlagKind::MainFileName},
};

} // namespace

Clang::Clang() : Clang(CompilerType::Clang) {}

Clang::Clang(CompilerType type) : Gcc(type, "clang", ClangFlags) {}

} // namespace Orvanta
