#include "platform/ChildWatch.h"

namespace Orvanta {

ChildWatch::ChildWatch() noexcept = default;

ChildWatch::~ChildWatch() = default;

std::optional<int> WatchIfAsked(int /*argumentCount*/, const char* const* /*arguments*/) {
    return std::nullopt;
}

void RemoveWhenKilled(const std::string& /*folder*/) {}

} // namespace Orvanta
