#include "FuzzInput.h"
#include "buildinput/trace/TraceReader.h"
#include "platform/StopFlag.h"

#include <sstream>

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The filter lets no compiler through: nothing that an input names is ever looked up or started.
    static const RunSettings settings = [] {
        RunSettings only;
        only.compilerFilter = {"no compiler"};
        only.traceDirectory = "/";
        return only;
    }();
    static const CompilerRegistry registry;
    const StopFlag stop;
    Log log;
    CompilerIdentifier identifier(settings, log, stop);
    InvocationCollector collector(settings, registry, identifier, log);
    std::istringstream stream{std::string(FuzzText(data, size))};
    try {
        const bool isTrace = ReadTrace(stream, "trace", collector);
        const CollectedCommands collected = collector.Take();
        Require(isTrace == (collected.invocations > 0) && collected.skipped.size() == collected.invocations);
    } catch (const ZelmException&) {
        // No process, or no compiler.
    }
    return 0;
}
