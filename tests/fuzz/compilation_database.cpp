#include "FuzzInput.h"
#include "buildinput/CompilationDatabase.h"
#include "buildinput/DatabaseExcerpt.h"
#include "compilers/CompilerRegistry.h"
#include "platform/StopFlag.h"

#include <nlohmann/json.hpp>

#include <sstream>

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // No compiler has this name: nothing that an input names is ever looked up or started.
    static const RunSettings settings = [] {
        RunSettings only;
        only.compilerFilter = {"no compiler"};
        return only;
    }();
    static const CompilerRegistry registry;
    const StopFlag stop;
    Log log;
    CompilerIdentifier identifier(settings, log, stop);
    InvocationCollector collector(settings, registry, identifier, log);
    std::istringstream stream{std::string(FuzzText(data, size))};
    try {
        ParseCompilationDatabase(stream, CommandStringRules::Posix, collector);
        const CollectedCommands collected = collector.Take();
        Require(collected.invocations > 0 && collected.skipped.size() == collected.invocations);
        // Cut without a parser, it has as many entries.
        std::istringstream again{std::string(FuzzText(data, size))};
        const auto entries = PickEntries(again, [](std::string_view) { return true; });
        Require(entries && entries->size() == collected.invocations);
    } catch (const ZelmException&) {
        // No entries.
    } catch (const nlohmann::json::exception&) {
        // No JSON, or not that of a database.
    }
    return 0;
}
