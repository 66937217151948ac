#include "cppcheck/CppcheckRun.h"

#include "cppcheck/CppcheckCommand.h"
#include "cppcheck/ScopedFolder.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <cstdint>
#include <set>
#include <tuple>
#include <vector>

namespace Orvanta {

namespace {

/// A file that is there for as long as the object.
/// Cppcheck reads only files, so the cut text has to become one.
class ScopedFile {
public:
    ScopedFile(const std::string& path, std::string_view text) : path_(path) {
        try {
            OutputFile(path_, OutputFile::Mode::Replace).Append(text);
        } catch (...) {
            // A part of it may be there, and the destructor of an object that was not made is not run.
            RemoveFile(path_);
            throw;
        }
    }

    ~ScopedFile() { RemoveFile(path_); }

    ScopedFile(const ScopedFile&) = delete;
    ScopedFile& operator=(const ScopedFile&) = delete;

private:
    std::string path_;
};

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

std::string CppcheckVersion(const std::string& workingDirectory) {
    const std::string program = FindCppcheck();
    std::string output;
    // Within our group: whoever ends this core ends Cppcheck too.
    Process process({program, "--version"}, {workingDirectory, OwnEnvironmentBlock(), ProcessGroup::Inherited},
                    MakeRedirectToStringProcessor(output), [](std::string_view) {});
    if (const int exitCode = process.get_exit_status(); exitCode != 0) {
        throw ZelmException("Cppcheck ended with code " + std::to_string(exitCode));
    }
    // One of the same version that was built anew is another one.
    const ContentFingerprint content = FingerprintOfFile(program).value_or(ContentFingerprint());
    return std::string(Trim(output)) + ", " + ResolveLinks(program) + ", " + std::to_string(content.bytes.low);
}

CppcheckOutput RunCppcheckCommand(const Arguments& command, const std::string& workingDirectory) {
    std::string standardOutput;
    std::string standardError;
    const StartConditions conditions{workingDirectory, OwnEnvironmentBlock(), ProcessGroup::Inherited};
    Process process(command, conditions, MakeRedirectToStringProcessor(standardOutput),
                    MakeRedirectToStringProcessor(standardError));
    const int exitCode = process.get_exit_status();
    // Findings come on standard error, its own faults on either.
    CppcheckOutput output = ReadCppcheckOutput(standardError);
    if (exitCode != 0) {
        throw ZelmException("Cppcheck ended with code " + std::to_string(exitCode) + ": " +
                            std::string(Trim(output.otherText + standardOutput)));
    }
    return output;
}

CppcheckOutput RunCppcheck(const UnitSettings& unit, std::string_view cutText) {
    const std::string program = FindCppcheck();
    const std::string textPath = unit.preprocessedPath + ".cut" + std::string(ExtensionFor(unit.language));
    const ScopedFile textFile(textPath, cutText);
    // Cppcheck looks for its libraries in the current directory first: in the unit's own, any file could be one.
    return RunCppcheckCommand(CppcheckCommand(program, unit, textPath),
                              std::string(DirectoryOf(unit.preprocessedPath)));
}

CppcheckCollection CollectWithCppcheck(const UnitSettings& unit, std::string_view cutText) {
    const std::string program = FindCppcheck();
    const ScopedFolder folder(unit.preprocessedPath + ".facts");
    // The same name for each unit, in a folder of its own: then nothing that Cppcheck writes depends on where it stood.
    const std::string textName = "unit" + std::string(ExtensionFor(unit.language));
    OutputFile(JoinPath(folder.Path(), textName), OutputFile::Mode::Replace).Append(cutText);
    CppcheckCollection collection;
    collection.output = RunCppcheckCommand(CppcheckCollectCommand(program, unit, textName), folder.Path());
    // By the name that Cppcheck gives to what it tells of the first file of its name.
    collection.analyzerInformation = ReadWholeFile(JoinPath(folder.Path(), "unit.a1"));
    DropRepeated(collection.output.findings);
    return collection;
}

Fingerprint FingerprintOfAnalysis(const UnitSettings& unit, std::string_view cutText) {
    FingerprintBuilder builder;
    // Without the text's path, which is another one in each run.
    for (const std::string& word : CppcheckCommand(FindCppcheck(), unit, "")) {
        builder.Add(word);
    }
    // What the choice leaves out is not collected.
    builder.Add(std::string{static_cast<char>(unit.choice.groups), unit.choice.all ? 'a' : ' '});
    return builder.Add(cutText).Value();
}

} // namespace Orvanta
