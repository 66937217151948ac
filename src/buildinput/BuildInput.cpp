#include "buildinput/BuildInput.h"

#include "buildinput/CompilationDatabase.h"
#include "buildinput/InvocationCollector.h"
#include "buildinput/trace/TraceReader.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <fstream>

namespace Orvanta {

NoCompilerInvocationsFound::NoCompilerInvocationsFound(Hint hint)
    : ZelmException("No compiler invocations were detected."), hint_(hint) {}

void ReadBuildInput(const std::string& path, InvocationCollector& collector) {
    std::ifstream input;
    if (LookAt(path).kind != PathKind::Folder) { // some systems open a folder for reading like a file
        input.open(NativePath(path), std::ios::binary);
    }
    if (!input.is_open()) {
        throw ZelmException("Couldn't open file " + path);
    }
    if (ExtensionOf(path) == ".json") {
        input.close();
        collector.SetBaseDirectory(std::string(DirectoryOf(AbsolutePath(path))));
        if (!ReadCompilationDatabase(path, collector)) {
            throw ZelmException("Couldn't parse compile commands database " + path);
        }
    } else if (!ReadTrace(input, path, collector)) {
        throw ZelmException("Couldn't parse " + path);
    }
    collector.MessageLog().Line("Using tracing file: " + path);
}

} // namespace Orvanta
