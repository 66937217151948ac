#include "compilers/CompilerRegistry.h"

#include "compilers/Clang.h"
#include "compilers/Gcc.h"
#include "platform/Exceptions.h"

#include <string>

namespace Orvanta {

CompilerRegistry::CompilerRegistry() : models_{std::make_shared<Gcc>(), std::make_shared<Clang>()} {}

std::shared_ptr<const Compiler> CompilerRegistry::Get(CompilerType type) const {
    for (const std::shared_ptr<const Compiler>& model : models_) {
        if (model->Type() == type) {
            return model;
        }
    }
    throw ZelmException("Unknown preprocessor type: " + std::to_string(static_cast<int>(type)));
}

} // namespace Orvanta
