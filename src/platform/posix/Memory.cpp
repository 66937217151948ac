#include "platform/Memory.h"

#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/posix/ControlGroupMemory.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

namespace {

constexpr std::uint64_t NoLimit = std::numeric_limits<std::uint64_t>::max();

/// How a version of control groups tells of memory.
struct GroupFiles {
    std::string_view mount;
    std::initializer_list<const char*> limits; // the least counts
    const char* usage;
    std::initializer_list<const char*> reclaimable; // lines of memory.stat: files that the system drops when it has to
};

const GroupFiles Version1 = {"/sys/fs/cgroup/memory",
                             {"memory.limit_in_bytes"},
                             "memory.usage_in_bytes",
                             {"total_inactive_file ", "total_active_file "}};
const GroupFiles Version2 = {
    "/sys/fs/cgroup", {"memory.max", "memory.high"}, "memory.current", {"inactive_file ", "active_file "}};

// The number behind a word that begins a line; 0 where there is none.
std::uint64_t NumberBehind(std::string_view text, std::string_view word) {
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (line.starts_with(word)) {
            std::string_view rest = Trim(line.substr(word.size()));
            return WholeNumber<std::uint64_t>(TakeUpTo(rest, " ")).value_or(0);
        }
    }
    return 0;
}

// What a group has left of its limit; "max", and what is not understood, is none.
std::uint64_t LeftInGroup(const std::string& folder, const GroupFiles& files) {
    constexpr std::uint64_t Boundless = std::uint64_t{1} << 60U; // how version 1 writes that there is no limit
    std::uint64_t limit = NoLimit;
    for (const char* const name : files.limits) {
        // The root of the tree has no such file, and neither have groups without the controller.
        if (PathExists(folder + name)) {
            limit = std::min(limit, WholeNumber<std::uint64_t>(Trim(ReadWholeFile(folder + name))).value_or(NoLimit));
        }
    }
    if (limit >= Boundless) {
        return NoLimit;
    }
    const std::uint64_t used = WholeNumber<std::uint64_t>(Trim(ReadWholeFile(folder + files.usage))).value_or(0);
    const std::string statistics = ReadWholeFile(folder + "memory.stat");
    std::uint64_t reclaimable = 0;
    for (const char* const word : files.reclaimable) {
        reclaimable += NumberBehind(statistics, word);
    }
    const std::uint64_t held = used - std::min(used, reclaimable);
    return limit - std::min(limit, held);
}

// The tightest of the group and those around it. In a container its own group may be the root of what it sees.
std::uint64_t LeftInGroups(const std::string& root, std::string group, const GroupFiles& files) {
    std::uint64_t left = NoLimit;
    for (bool isRoot = false; !isRoot;) {
        isRoot = group.empty() || group == "/";
        std::string folder = root;
        folder.append(files.mount).append(isRoot ? "" : group).append("/");
        left = std::min(left, LeftInGroup(folder, files));
        group.resize(isRoot ? 0 : group.rfind('/'));
    }
    return left;
}

// The path of our group among the lines "NUMBER:CONTROLLERS:PATH"; version 2 has no controllers in its line.
std::optional<std::string> GroupOf(std::string_view groups, std::string_view controller) {
    while (!groups.empty()) {
        std::string_view line = TakeLine(groups);
        static_cast<void>(TakeUpTo(line, ":"));
        std::string_view controllers = TakeUpTo(line, ":");
        if (controller.empty() && controllers.empty()) {
            return std::string(line);
        }
        while (!controllers.empty()) {
            if (TakeUpTo(controllers, ",") == controller) {
                return std::string(line);
            }
        }
    }
    return std::nullopt;
}

} // namespace

std::uint64_t GrantedMemoryBelow(const std::string& root) {
    constexpr std::uint64_t BytesOfUnit = 1024;
    std::uint64_t granted = NumberBehind(ReadWholeFile(root + "/proc/meminfo"), "MemAvailable:") * BytesOfUnit;
    granted = granted == 0 ? NoLimit : granted;
    const std::string groups = ReadWholeFile(root + "/proc/self/cgroup");
    if (const auto group = GroupOf(groups, "memory")) {
        granted = std::min(granted, LeftInGroups(root, *group, Version1));
    }
    if (const auto group = GroupOf(groups, "")) {
        granted = std::min(granted, LeftInGroups(root, *group, Version2));
    }
    // None left is not the same as not told.
    return granted == NoLimit ? 0 : std::max<std::uint64_t>(granted, 1);
}

std::uint64_t GrantedMemory() noexcept {
    try {
        return GrantedMemoryBelow("");
    } catch (const std::exception&) {
        return 0; // a system that shows no such files
    }
}

} // namespace Orvanta
