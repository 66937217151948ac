#include "buildinput/BuildInput.h"

#include "buildinput/CompilationDatabase.h"
#include "buildinput/InvocationCollector.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <fstream>

namespace Orvanta {

namespace {

void ReadTrace(const std::string& path) {
    throw ZelmException("Couldn't parse " + path +
                        ": process traces can't be read yet, use a compilation database (compile_commands.json)");
}

} // namespace

NoCompilerInvocationsFound::NoCompilerInvocationsFound(Hint hint)
    : ZelmException("No compiler invocations were detected."), hint_(hint) {}

void ReadBuildInput(const std::string& path, InvocationCollector& collector) {
    // Some systems open a folder for reading like a file.
    if (IsDirectory(path) || !std::ifstream(path).is_open()) {
        throw ZelmException("Couldn't open file " + path);
    }
    if (ExtensionOf(path) == ".json") {
        collector.SetBaseDirectory(std::string(DirectoryOf(AbsolutePath(path))));
        if (!ReadCompilationDatabase(path, collector)) {
            throw ZelmException("Couldn't parse compile commands database " + path);
        }
    } else {
        ReadTrace(path);
    }
    collector.MessageLog().Line("Using tracing file: " + path);
}

} // namespace Orvanta
