#include "compilers/CompilerRegistry.h"

#include "compilers/Cl.h"
#include "compilers/Clang.h"
#include "compilers/ClangCl.h"
#include "compilers/Gcc.h"
#include "platform/Exceptions.h"

#include <string>

namespace Orvanta {

CompilerRegistry::CompilerRegistry()
    : models_{std::make_shared<Gcc>(), std::make_shared<Clang>(), std::make_shared<Cl>(), std::make_shared<ClangCl>()} {
}

std::shared_ptr<const Compiler> CompilerRegistry::Get(CompilerType type) const {
    for (const std::shared_ptr<const Compiler>& model : models_) {
        if (model->Type() == type) {
            return model;
        }
    }
    throw ZelmException("Unknown preprocessor type: " + std::to_string(static_cast<int>(type)));
}

} // namespace Orvanta
