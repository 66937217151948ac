#pragma once

#include "bundled/UnitSettings.h"

#include <string>

// The bundled core: a program of its own that the driver runs once for each unit, as it would run any other core. It
// checks nothing itself, so that everyone without an installed core still gets findings; that it checks well is left to
// Cppcheck, that nothing is lost or told in the wrong place on the way there and back is what this folder is for.
//
// The road of a unit: UnitSettings (what the driver asks) -> MarkedText (the preprocessed text line by line, each with
// its file) -> SystemTextCutter (without the text of system headers) -> CppcheckCommand, CppcheckRun -> CppcheckOutput
// (its findings as records) -> ReportWriter (as report messages) -> the unit's output file.
//
// Why text that is cut, and not the source itself: only the project's own compiler knows what the source means, with
// all flags, macros and built-in names. Cppcheck's own preprocessor would guess, and guess once more for every
// combination of macros. Why system headers are cut: they are most of the text, their faults are nobody's business
// here, and Cppcheck has tables for the functions in them.
//
// Why files go by aliases (FileAlias): a text names its files by line markers, and whatever stands there comes back in
// a finding. Plain names that depend on the path alone need no quoting in any form that Cppcheck writes, and two units
// that include one header agree on it, which the linking of facts builds upon.
//
// Across units (AnalyzerInformation, UnitInformation, CppcheckLink, Linking, MergedFindings): Cppcheck's whole-program
// step wants to see all facts in one build folder of its own. Each unit's facts are kept as that step will want them,
// and put into such a folder only for the linking, so that collecting runs need nothing of each other. What that step
// can't see (CppcheckDump, FunctionNames, MemberCalls, ReturnedPointers, FunctionLinks): it knows a function by the
// place of its first declaration, and calls only by a plain name. So facts of other calls are added from the dump, and
// the linking gives one id to all declarations of what a linker would take for one function.

namespace Orvanta {

/// What a run of the core says besides findings.
struct UnitWords {
    std::string tallies;   ///< lines that the driver adds up over all units
    std::string otherText; ///< what engines wrote besides findings
};

/// Analyzes the unit and writes its findings, which may be none, to its output file; in the performing stage, with
/// those that the linking has found in its files. An output file from before is replaced only when the unit was
/// analyzed. \throws ZelmException when the unit could not be analyzed
[[nodiscard]] UnitWords AnalyzeUnit(const UnitSettings& unit, const std::string& currentDirectory);

/// Analyzes the unit and writes its findings, with what concerns other units, to its information file, from which the
/// performing stage takes them; the tallies are told there.
/// \throws ZelmException when the unit could not be analyzed
[[nodiscard]] UnitWords CollectFacts(const UnitSettings& unit, const std::string& currentDirectory);

/// The files that the unit is made of, as the lines that the driver reads.
/// \throws ZelmException when the preprocessed file can't be read
[[nodiscard]] std::string DependencyLines(const UnitSettings& unit, const std::string& currentDirectory);

} // namespace Orvanta
