#pragma once

#include "bundled/AnalyzerInformation.h"
#include "bundled/CppcheckDump.h"

namespace Orvanta {

/// The facts that Cppcheck leaves out of those it tells of a unit's calls: which null pointers, uninitialized variables
/// and arrays are passed where a function is named through an object, a class or a namespace (`s.set(0)`,
/// `N::set(0)`). In the same form. Calls of virtual functions are left out: which one is called is not known.
[[nodiscard]] FactGroup MemberCallFacts(const CppcheckDump& dump);

} // namespace Orvanta
