#include "platform/Memory.h"

#include <algorithm>

#include <windows.h>

namespace Orvanta {

std::uint64_t GrantedMemory() noexcept {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    if (::GlobalMemoryStatusEx(&status) == 0) {
        return 0;
    }
    // What can't be committed can't be had, however much of the machine's memory is free.
    std::uint64_t granted = std::min<std::uint64_t>(status.ullAvailPhys, status.ullAvailPageFile);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    // Of the job that this process is in; there is none outside of containers and the like.
    if (::QueryInformationJobObject(nullptr, JobObjectExtendedLimitInformation, &limits, sizeof limits, nullptr) != 0 &&
        (limits.BasicLimitInformation.LimitFlags & JOB_OBJECT_LIMIT_JOB_MEMORY) != 0) {
        granted = std::min<std::uint64_t>(granted, limits.JobMemoryLimit);
    }
    // None left is not the same as not told.
    return std::max<std::uint64_t>(granted, 1);
}

} // namespace Orvanta
