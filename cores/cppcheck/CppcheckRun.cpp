#include "cppcheck/CppcheckRun.h"

#include "cppcheck/CppcheckCommand.h"
#include "platform/Exceptions.h"
#include "platform/Executable.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Process.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

/// A file that is there for as long as the object.
class ScopedFile {
public:
    ScopedFile(const std::string& path, std::string_view text) : path_(path) {
        try {
            OutputFile(path_, OutputFile::Mode::Replace).Append(text);
        } catch (...) {
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

std::string FindCppcheck() {
    std::string program = FindExecutable("cppcheck");
    if (program.empty()) {
        throw ZelmException("Cppcheck was not found along PATH: install the package \"cppcheck\", or name another "
                            "core with --orvanta-path");
    }
    return program;
}

} // namespace

CppcheckOutput RunCppcheck(const UnitSettings& unit, std::string_view cutText) {
    const std::string program = FindCppcheck();
    const std::string textPath = unit.preprocessedPath + (unit.language == UnitLanguage::C ? ".cut.c" : ".cut.cpp");
    const ScopedFile textFile(textPath, cutText);
    std::string standardOutput;
    std::string standardError;
    // Cppcheck looks for its libraries in the current directory first: in the unit's own, any file could be one.
    const StartConditions conditions{std::string(DirectoryOf(unit.preprocessedPath)), OwnEnvironmentBlock(),
                                     ProcessGroup::Inherited};
    Process process(CppcheckCommand(program, unit, textPath), conditions, MakeRedirectToStringProcessor(standardOutput),
                    MakeRedirectToStringProcessor(standardError));
    const int exitCode = process.get_exit_status();
    CppcheckOutput output = ReadCppcheckOutput(standardError);
    if (exitCode != 0) {
        throw ZelmException("Cppcheck ended with code " + std::to_string(exitCode) + ": " +
                            std::string(Trim(output.otherText + standardOutput)));
    }
    return output;
}

} // namespace Orvanta
