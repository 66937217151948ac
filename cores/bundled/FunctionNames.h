#pragma once

#include "bundled/AnalyzerInformation.h"
#include "bundled/CppcheckDump.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// A function that other units can call, or that this one calls in another. Cppcheck tells functions apart by the place
/// of their first declaration, which is another one in each unit that does not see the same header.
struct NamedFunction {
    std::string place;      ///< as facts have it
    std::string name;       ///< the same in each unit: `S::set(int*)`, or `set` of C
    std::string definition; ///< where its body begins; empty when it is not defined here

    bool operator==(const NamedFunction&) const = default;
};

/// The name that a linker would know the function by; empty for those that it does not know (static, or in a namespace
/// without name) and for those of templates.
[[nodiscard]] std::string LinkedName(const CppcheckDump& dump, const DumpFunction& function);

/// Those with such a name that are defined in the unit, or that its facts are about.
[[nodiscard]] std::vector<NamedFunction> NameFunctions(const CppcheckDump& dump, std::span<const FactGroup> facts);

} // namespace Orvanta
