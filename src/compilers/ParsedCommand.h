#pragma once

#include "compilers/CompilerType.h"
#include "compilers/FlagEffect.h"
#include "compilers/FlagKind.h"
#include "compilers/TargetBits.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Much of a command stands here twice. The kept arguments are the words as the build wrote them, and go back to the
// compiler as they are: a command put together from parts would differ from the build's in order and spelling. The
// parts beside them are for whoever has to know what the words say: the core, and the watch over the files of a unit.

namespace Orvanta {

/// A precompiled header that a flag names, and the kept arguments that do.
struct PrecompiledHeaderUse {
    std::string path; ///< as written; empty: none
    std::size_t firstArgument = 0;
    std::size_t arguments = 0;
};

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
    std::vector<std::string> filesRead;      ///< that flags name beside these, as written; see FilesNamedByFlags
    std::vector<std::string> specFiles;      ///< likewise, looked for behind the search prefixes first
    std::vector<std::string> searchPrefixes; ///< where the driver looks for its parts first, as written
    PrecompiledHeaderUse precompiled;        ///< whose text the compiler takes; the last counts
    FlagEffects effects;                     ///< of all flags
    std::optional<Language> language;        ///< when a flag states it, or the source is preprocessed already
    std::optional<FlagKind> cStandard;       ///< the last C standard flag (StandardAnsi counts for both languages)
    std::optional<FlagKind> cppStandard;     ///< the last C++ standard flag
    std::optional<TargetBits> targetBits;    ///< that a flag for the size of words states
    std::string targetTriple;                ///< empty when the command names none
    std::string platformWord;                ///< for the core; empty when the command names no target
    bool unsignedChar = false;
};

/// Takes the flag that names a precompiled header out of the kept arguments.
void DropPrecompiled(ParsedCommand& command);

/// The files beside sources and headers that the compiler reads because a flag names them: specs, configurations,
/// overlays, plug-ins. Relative ones are of the invocation's folder. Some of them may not exist: the compiler looks
/// there before it looks elsewhere, so that one that appears counts.
[[nodiscard]] std::vector<std::string> FilesNamedByFlags(const ParsedCommand& command);

} // namespace Orvanta
