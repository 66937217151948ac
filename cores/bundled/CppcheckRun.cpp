#include "bundled/CppcheckRun.h"

#include "bundled/CppcheckCommand.h"
#include "bundled/ProgramRun.h"
#include "bundled/ScopedFolder.h"
#include "bundled/Targets.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/ScopedFile.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <tuple>
#include <vector>

namespace Orvanta {

namespace {

// A file of our own for a target that Cppcheck has no word for; null where it has one.
std::unique_ptr<ScopedFile> WritePlatform(const UnitSettings& unit) {
    const std::optional<Target> target = TargetOf(unit);
    if (!target || !target->sizes) {
        return nullptr;
    }
    return std::make_unique<ScopedFile>(PlatformPath(unit), PlatformFileText(*target->sizes, unit.isPlainCharUnsigned));
}

std::string_view ExtensionFor(UnitLanguage language) {
    return language == UnitLanguage::C ? ".c" : ".cpp";
}

// With a build folder, Cppcheck runs its whole-program step over the one unit twice, the second time without knowing
// where values come from.
void DropRepeated(std::vector<Finding>& findings) {
    std::set<std::tuple<std::string, std::uint32_t, std::string>> seen;
    std::erase_if(findings, [&](const Finding& finding) {
        return finding.id.starts_with("ctu") &&
               !seen.emplace(finding.location.file, finding.location.line, finding.id + finding.message).second;
    });
}

} // namespace

std::string FindCppcheck() {
    std::string program = FindExecutable("cppcheck");
    if (program.empty()) {
        throw ZelmException("Cppcheck was not found along PATH: install the package \"cppcheck\", or name another "
                            "core with --orvanta-path");
    }
    return program;
}

CppcheckOutput RunCppcheckCommand(const Arguments& command, const std::string& workingDirectory) {
    const ProgramEnd end = RunProgram(command, workingDirectory);
    // Findings come on standard error, its own faults on either.
    CppcheckOutput output = ReadCppcheckOutput(end.standardError);
    if (end.exitCode != 0) {
        throw ZelmException("Cppcheck ended with code " + std::to_string(end.exitCode) + ": " +
                            std::string(Trim(output.otherText + end.standardOutput)));
    }
    return output;
}

std::string ReasonNotToRun(const UnitSettings& unit, std::string_view cutText) {
    constexpr std::size_t LongestList = 20'000;
    std::size_t elements = 1;
    std::size_t longest = 1;
    // No statement ends within a list. What literals hold of these characters is too little to matter.
    for (const char character : cutText) {
        if (character == ',') {
            longest = std::max(longest, ++elements);
        } else if (character == ';') {
            elements = 1;
        }
    }
    if (unit.isDeep || longest <= LongestList) {
        return "";
    }
    return "a list of " + std::to_string(longest) + " elements, more than " + std::to_string(LongestList);
}

CppcheckOutput RunCppcheck(const UnitSettings& unit, std::string_view cutText) {
    const std::string program = FindCppcheck();
    const std::string textPath = unit.preprocessedPath + ".cut" + std::string(ExtensionFor(unit.language));
    const ScopedFile textFile(textPath, cutText);
    const std::unique_ptr<ScopedFile> platformFile = WritePlatform(unit);
    // Cppcheck looks for its libraries in the current directory first: in the unit's own, any file could be one.
    return RunCppcheckCommand(CppcheckCommand(program, unit, textPath),
                              std::string(DirectoryOf(unit.preprocessedPath)));
}

CppcheckCollection CollectWithCppcheck(const UnitSettings& unit, std::string_view cutText) {
    const std::string program = FindCppcheck();
    const ScopedFolder folder(unit.preprocessedPath + ".facts");
    const std::unique_ptr<ScopedFile> platformFile = WritePlatform(unit);
    // The same name for each unit, in a folder of its own: then nothing that Cppcheck writes depends on where it stood.
    const std::string textName = "unit" + std::string(ExtensionFor(unit.language));
    OutputFile(JoinPath(folder.Path(), textName), OutputFile::Mode::Replace).Append(cutText);
    CppcheckCollection collection;
    collection.output = RunCppcheckCommand(CppcheckCollectCommand(program, unit, textName), folder.Path());
    // By the name that Cppcheck gives to what it tells of the first file of its name.
    collection.analyzerInformation = ReadWholeFile(JoinPath(folder.Path(), "unit.a1"));
    if (const std::string dump = JoinPath(folder.Path(), textName + ".dump"); PathExists(dump)) {
        collection.dump = ReadWholeFile(dump);
    }
    DropRepeated(collection.output.findings);
    return collection;
}

} // namespace Orvanta
