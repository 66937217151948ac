#include "app/RunCache.h"

#include "app/ProjectSettings.h"
#include "app/Version.h"
#include "history/UnitIdentities.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "settings/SettingsMap.h"

#include <optional>
#include <utility>

namespace Orvanta {

namespace {

// Of all that makes a result, and is the same for all units.
Digest MakersOf(const RunSettings& settings, const RunPlaces& places) {
    DigestBuilder builder;
    builder.Add(Version).Add(ResultVersion).Add(places.coreVersion);
    const std::optional<Digest> core = DigestOfFile(places.corePath);
    if (!core) {
        throw FileException(places.corePath, "the core can't be read");
    }
    builder.Add(core->Text());
    // The core is told its name, and reads what it holds.
    const std::optional<std::string> rules = LastValue(settings.userSettings, "rules-config");
    const std::optional<Digest> contents = rules ? DigestOfFile(*rules) : std::nullopt;
    return builder.Add(contents ? contents->Text() : std::string()).Value();
}

// What the file holds, without line ends.
std::string TokenOf(const CacheSettings& cache) {
    if (cache.tokenFile.empty()) {
        return "";
    }
    if (IsReadableByOthers(cache.tokenFile)) {
        throw ZelmException("The file of --cache-token-file can be read by others: " + cache.tokenFile,
                            "Take the right away: chmod 600 " + cache.tokenFile);
    }
    const std::string text = ReadWholeFile(cache.tokenFile);
    std::string token(Trim(text));
    if (token.empty() || token.find_first_of("\r\n") != std::string::npos) {
        throw ZelmException("The file of --cache-token-file holds no token: " + cache.tokenFile);
    }
    return token;
}

} // namespace

std::unique_ptr<ResultCache> MakeResultCache(const RunSettings& settings, const RunPlaces& places) {
    const CacheSettings& cache = settings.cache;
    if (cache.place.empty()) {
        return nullptr;
    }
    std::unique_ptr<ResultStore> store = MakeResultStore(cache.place, TokenOf(cache));
    const std::string root =
        LastValue(settings.userSettings, SourceTreeRootKey).value_or(CheckoutRoot().value_or(std::string()));
    const auto access = cache.isReadOnly ? ResultCache::Access::ReadOnly : ResultCache::Access::ReadAndWrite;
    return std::make_unique<ResultCache>(std::move(store), ResultCache::Settings{access, cache.largestSize},
                                         RootMark(root), MakersOf(settings, places));
}

std::string HitsText(const ResultCache* cache) {
    constexpr std::size_t Percent = 100;
    const std::size_t asked = cache == nullptr ? 0 : cache->Hits() + cache->Misses();
    if (asked == 0) {
        return "";
    }
    return "Result cache: " + std::to_string(cache->Hits()) + " of " + std::to_string(asked) + " files were known (" +
           std::to_string(cache->Hits() * Percent / asked) + "%)\n";
}

} // namespace Orvanta
