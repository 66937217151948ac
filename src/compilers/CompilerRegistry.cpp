#include "compilers/CompilerRegistry.h"

#include "compilers/Cl.h"
#include "compilers/Clang.h"
#include "compilers/ClangCl.h"
#include "compilers/Gcc.h"
#include "compilers/GccARM.h"
#include "compilers/IARArm.h"
#include "compilers/IARArm_v7_OrOlder.h"
#include "compilers/Keil5.h"
#include "compilers/Keil5Gnu.h"
#include "compilers/Keil6.h"
#include "compilers/Qcc.h"
#include "compilers/TiArmCGT.h"
#include "compilers/XC8.h"
#include "platform/Exceptions.h"

#include <string>

namespace Orvanta {

CompilerRegistry::CompilerRegistry(LauncherWords launcher)
    : models_{
          std::make_shared<Gcc>(),        std::make_shared<Clang>(),
          std::make_shared<Cl>(launcher), std::make_shared<ClangCl>(launcher),
          std::make_shared<Keil5>(),      std::make_shared<Keil5Gnu>(),
          std::make_shared<Keil6>(),      std::make_shared<TiArmCGT>(),
          std::make_shared<GccARM>(),     std::make_shared<IARArm_v7_OrOlder>(),
          std::make_shared<IARArm>(),     std::make_shared<Qcc>(),
          std::make_shared<XC8>(),
      } {}

std::shared_ptr<const Compiler> CompilerRegistry::Get(CompilerType type) const {
    for (const std::shared_ptr<const Compiler>& model : models_) {
        if (model->Type() == type) {
            return model;
        }
    }
    throw ZelmException("Unknown preprocessor type: " + std::to_string(static_cast<int>(type)));
}

} // namespace Orvanta
