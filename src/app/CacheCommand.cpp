#include "app/CacheCommand.h"

#include "app/AnalyzeOptions.h"
#include "cache/CacheFolder.h"
#include "cache/CachedResult.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "settings/RunSettings.h"

#include <args.hxx>

#include <cstdint>
#include <string>
#include <string_view>

namespace Orvanta {

namespace {

/// What is done with a cache, by its word.
struct Action {
    std::string_view word;
    void (*run)(const CacheFolder& cache, std::uint64_t largest);
};

std::string Amount(const CacheFolder::Contents& contents) {
    constexpr std::uint64_t Kilobyte = 1024;
    return std::to_string(contents.entries) + " results, " + std::to_string(contents.bytes / Kilobyte) + " KB";
}

void TellRemoved(const CacheFolder::Contents& removed) {
    PrintLine("Removed: " + Amount(removed));
}

void Show(const CacheFolder& cache, std::uint64_t) {
    PrintLine("Kept: " + Amount(cache.Count()));
}

void Clear(const CacheFolder& cache, std::uint64_t) {
    TellRemoved(cache.RemoveUnless([](std::string_view) { return false; }));
}

void TrimTo(const CacheFolder& cache, std::uint64_t largest) {
    TellRemoved(cache.Trim(largest));
    Show(cache, largest);
}

// Damaged ones are misses in any case; they only take room.
void Verify(const CacheFolder& cache, std::uint64_t largest) {
    const CacheFolder::Contents damaged = cache.RemoveUnless(IsPackedResult);
    Show(cache, largest);
    if (damaged.entries > 0) {
        throw ZelmException("Damaged, and removed: " + Amount(damaged));
    }
    PrintLine("None is damaged");
}

constexpr Action Actions[] = {{"stats", Show}, {"clear", Clear}, {"trim", TrimTo}, {"verify", Verify}};

const Action& ActionOf(const std::string& word) {
    for (const Action& action : Actions) {
        if (action.word == word) {
            return action;
        }
    }
    throw ZelmException("Unknown action \"" + word + "\", expected stats, clear, trim or verify");
}

} // namespace

void CacheCommand(args::Subparser& parser) {
    args::Positional<std::string> word(parser, "ACTION",
                                       "stats  - how much is kept;\n"
                                       "clear  - remove all results;\n"
                                       "trim   - remove the least recently used, down to --size;\n"
                                       "verify - read all results and remove damaged ones.",
                                       args::Options::Required);
    args::ValueFlag<std::string> folder(parser, "DIR", "The cache of results", {"cache"}, args::Options::Required);
    args::ValueFlag<std::string> size(parser, "SIZE", "The largest size for trim; K, M and G behind the number count",
                                      {"size"}, "5G");
    size.HelpDefault("5G");
    parser.Parse();
    const Action& action = ActionOf(word.Get());
    const std::uint64_t largest = RequireByteCount(size.Get(), "--size");
    if (IsServerAddress(folder.Get())) {
        throw ZelmException("Results on a server are looked after there: " + folder.Get());
    }
    const std::string path = AbsolutePath(folder.Get());
    if (folder.Get().empty() || !IsDirectory(path)) {
        throw ZelmException("There is no cache of results: " + folder.Get());
    }
    action.run(CacheFolder(path), largest);
}

} // namespace Orvanta
