#include "buildinput/BuildInput.h"

#include "buildinput/CompilationDatabase.h"
#include "buildinput/InvocationCollector.h"
#include "buildinput/trace/TraceReader.h"
#include "platform/InputFile.h"
#include "platform/Paths.h"

#include <optional>

namespace Orvanta {

NoCompilerInvocationsFound::NoCompilerInvocationsFound(Hint hint)
    : ZelmException("No compiler invocations were detected."), hint_(hint) {}

namespace {

// Once only: what a pipe has given can't be read again.
void Open(const std::string& path, std::optional<InputStream>& input) {
    const std::string message = "Couldn't open file " + path;
    try {
        input.emplace(path);
    } catch (const FileException& error) {
        throw ZelmException(message, error.Reason());
    }
    if (input->IsEndless()) {
        throw ZelmException(message, "It is no file, pipe or terminal");
    }
}

} // namespace

void ReadBuildInput(const std::string& path, InvocationCollector& collector) {
    std::optional<InputStream> opened;
    Open(path, opened);
    InputStream& input = *opened;
    // The extension alone decides: a trace may be a pipe, of which no first bytes can be looked at and put back.
    const bool isDatabase = ExtensionOf(path) == ".json";
    bool isUnderstood = true;
    try {
        if (isDatabase) {
            // Where a database has relative directories, they count from the folder that it lies in.
            collector.SetBaseDirectory(std::string(DirectoryOf(AbsolutePath(path))));
            ReadDatabaseFrom(input, path, collector);
        } else {
            isUnderstood = ReadTrace(input, path, collector);
        }
    } catch (const ZelmException&) {
        EndWhenStopped(); // the rest was not read
        if (!input.bad()) {
            throw;
        }
    }
    EndWhenStopped();
    if (!isUnderstood || input.bad()) {
        throw ZelmException((isDatabase ? "Couldn't parse compile commands database " : "Couldn't parse ") + path);
    }
    // Told only of a file that has been read to its end.
    collector.MessageLog().Line("Using tracing file: " + path);
}

} // namespace Orvanta
