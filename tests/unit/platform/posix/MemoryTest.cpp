// Guards against a run that takes a container for the machine that it is on.

#include "platform/Memory.h"

#include "platform/posix/ControlGroupMemory.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>

#include <map>

namespace Orvanta {

namespace {

TEST(GrantedMemory, IsTheLeastOfWhatTheMachineAndTheControlGroupsLeave) {
    constexpr std::uint64_t Megabyte = 1024 * 1024;
    const std::map<std::string, std::string> machine = {
        {"proc/meminfo", "MemTotal:  4096 kB\nMemAvailable:   2048 kB\n"}, {"proc/self/cgroup", ""}};

    struct Case {
        const char* name;
        std::map<std::string, std::string> files; // beside those of the machine
        std::uint64_t granted;
    };

    const Case cases[] = {
        {"no group", {}, 2 * Megabyte},
        {"version 2, the outer group is tighter, files of the system don't count",
         {{"proc/self/cgroup", "0::/a/b\n"},
          {"sys/fs/cgroup/a/b/memory.max", "max\n"},
          {"sys/fs/cgroup/a/b/memory.high", "1900000\n"},
          {"sys/fs/cgroup/a/b/memory.current", "0\n"},
          {"sys/fs/cgroup/a/b/memory.stat", ""},
          {"sys/fs/cgroup/a/memory.max", "1048576\n"},
          {"sys/fs/cgroup/a/memory.current", "600000\n"},
          {"sys/fs/cgroup/a/memory.stat", "anon 100000\ninactive_file 300000\nactive_file 200000\n"}},
         1048576 - 100000},
        {"version 1, in a container that sees its own group as the root",
         {{"proc/self/cgroup", "4:cpu,memory:/docker/1\n0::/\n"},
          {"sys/fs/cgroup/memory/memory.limit_in_bytes", "500000\n"},
          {"sys/fs/cgroup/memory/memory.usage_in_bytes", "400000\n"},
          {"sys/fs/cgroup/memory/memory.stat", "total_inactive_file 100000\n"}},
         200000},
        {"version 1 without a limit",
         {{"proc/self/cgroup", "4:memory:/a\n"},
          {"sys/fs/cgroup/memory/a/memory.limit_in_bytes", "9223372036854771712"}},
         2 * Megabyte},
        {"a limit that is exceeded",
         {{"proc/self/cgroup", "4:memory:/a\n"},
          {"sys/fs/cgroup/memory/a/memory.limit_in_bytes", "1000"},
          {"sys/fs/cgroup/memory/a/memory.usage_in_bytes", "2000"},
          {"sys/fs/cgroup/memory/a/memory.stat", ""}},
         1},
    };
    for (const auto& [name, files, granted] : cases) {
        const TestFolder folder;
        for (const auto& set : {machine, files}) {
            for (const auto& [path, text] : set) {
                folder.Write(path, text);
            }
        }
        EXPECT_EQ(GrantedMemoryBelow(folder.Path()), granted) << name;
    }
    EXPECT_GT(GrantedMemory(), Megabyte);
}

} // namespace

} // namespace Orvanta
