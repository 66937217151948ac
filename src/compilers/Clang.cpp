#include "compilers/Clang.h"

namespace Orvanta {

namespace {

constexpr FlagRow ClangFlags[] = {
    {"main-file-name", FlagKind::MainFileName},
};

} // namespace

Clang::Clang() : Gcc(CompilerType::Clang, "clang", ClangFlags) {}

} // namespace Orvanta
