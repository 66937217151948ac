#include "cache/ResultStore.h"

#include "cache/CacheFolder.h"
#include "cache/RemoteStore.h"

namespace Orvanta {

bool IsServerAddress(std::string_view place) noexcept {
    return place.starts_with("http://") || place.starts_with("https://");
}

std::unique_ptr<ResultStore> MakeResultStore(const std::string& place, const std::string& token) {
    if (IsServerAddress(place)) {
        return std::make_unique<RemoteStore>(place, token);
    }
    return std::make_unique<CacheFolder>(place);
}

} // namespace Orvanta
