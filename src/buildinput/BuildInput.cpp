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
    // The extension alone decides: a trace may be a pipe, of which no first bytes can be looked at and put back.
    if (ExtensionOf(path) == ".json") {
        // It was opened to tell of a file that is not there in the same words, whatever kind it is.
        input.close();
        // Where a database has relative directories, they count from the folder that it lies in.
        collector.SetBaseDirectory(std::string(DirectoryOf(AbsolutePath(path))));
        if (!ReadCompilationDatabase(path, collector)) {
            throw ZelmException("Couldn't parse compile commands database " + path);
        }
    } else if (!ReadTrace(input, path, collector)) {
        throw ZelmException("Couldn't parse " + path);
    }
    // Told only of a file that has been read to its end.
    collector.MessageLog().Line("Using tracing file: " + path);
}

} // namespace Orvanta
