#include "FuzzInput.h"
#include "TraceMutator.h"
#include "buildinput/trace/TraceReader.h"
#include "compilers/CompilerRegistry.h"
#include "platform/StopFlag.h"

#include <algorithm>
#include <sstream>

using namespace Orvanta;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// One time in four the fuzzer's own way, which finds what no grammar thinks of.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
    if (seed % 4 == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    const std::string changed = TraceMutator(seed).Mutate(FuzzText(data, size)).substr(0, maxSize);
    std::copy(changed.begin(), changed.end(), data);
    return changed.size();
}

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
