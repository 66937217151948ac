#pragma once

#include "bundled/AnalyzerInformation.h"
#include "bundled/CppcheckDump.h"

#include <vector>

namespace Orvanta {

/// What Cppcheck's whole-program step does not look at: which functions return null pointers, and which calls'
/// results are used without a question. In the form of its facts of arguments, of which a returned pointer is number 0:
/// so that the step finds the one to the other.
[[nodiscard]] std::vector<FactGroup> ReturnFacts(const CppcheckDump& dump);

} // namespace Orvanta
