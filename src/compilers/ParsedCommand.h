#pragma once

#include "compilers/CompilerType.h"
#include "compilers/FlagKind.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

/// One compilation as its command line says it, for one of its source files.
struct ParsedCommand {
    CompilerType compilerType = CompilerType::Unknown;
    std::vector<std::string> invocationPrefix; ///< words that must stand before the compiler
    std::string compilerPath;                  ///< as it is to be started
    std::string sourceFile;                    ///< as written
    std::string outputFile;                    ///< empty when the command names none
    std::vector<std::string> keptArguments;    ///< for preprocessing, in the order of the command
    std::vector<std::string> userIncludes;
    std::vector<std::string> systemIncludes; ///< and system roots
    std::vector<std::string> defines;        ///< "NAME" or "NAME=VALUE"
    std::vector<std::string> forcedIncludes;
    std::optional<Language> language;    ///< when a flag states it, or the source is preprocessed already
    std::optional<FlagKind> cStandard;   ///< the last C standard flag (StandardAnsi counts for both languages)
    std::optional<FlagKind> cppStandard; ///< the last C++ standard flag
    std::string platformWord;            ///< empty when the command names no target
    bool unsignedChar = false;
    bool shortFloat = false;
    bool shortDouble = false;
    bool msvcAwait = false; ///< cl's first form of coroutines is on
};

} // namespace Orvanta
