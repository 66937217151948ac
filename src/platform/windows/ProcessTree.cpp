#include "platform/windows/ProcessTree.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

namespace Orvanta {

namespace {

constexpr UINT KilledCode = 1;
constexpr DWORD LongestDying = 10'000; // milliseconds; a process caught in a driver may never go

bool SetKillOnClose(void* job, bool isOn) noexcept {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = isOn ? JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE : 0;
    return ::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits) != FALSE;
}

// The numbers of the processes in a job; empty when the system does not tell them.
std::vector<DWORD> ProcessesOf(void* job) {
    constexpr std::size_t MostProcesses = 4096;
    std::vector<std::byte> memory(sizeof(JOBOBJECT_BASIC_PROCESS_ID_LIST) + MostProcesses * sizeof(ULONG_PTR));
    auto* const list = reinterpret_cast<JOBOBJECT_BASIC_PROCESS_ID_LIST*>(memory.data());
    if (::QueryInformationJobObject(job, JobObjectBasicProcessIdList, list, static_cast<DWORD>(memory.size()),
                                    nullptr) == FALSE) {
        return {};
    }
    std::vector<DWORD> ids;
    for (DWORD i = 0; i < list->NumberOfProcessIdsInList; ++i) {
        ids.push_back(static_cast<DWORD>(list->ProcessIdList[i]));
    }
    return ids;
}

std::uint64_t TicksOf(const FILETIME& time) {
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32U) | time.dwLowDateTime;
}

// When a process was started, to be compared with other such times only; 0 when that can't be told.
std::uint64_t BirthOf(void* process) {
    FILETIME created{};
    FILETIME ignored{};
    ::GetProcessTimes(process, &created, &ignored, &ignored, &ignored);
    return TicksOf(created);
}

std::chrono::microseconds DurationOf(std::uint64_t ticks) {
    constexpr std::uint64_t TicksPerMicrosecond = 10;
    return std::chrono::microseconds(ticks / TicksPerMicrosecond);
}

// A number alone proves no parent: the list names those too whose parent is gone, by a number that is free again.
std::vector<DWORD> ChildrenOf(DWORD parent) {
    std::vector<DWORD> children;
    const Handle snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL isThere = ::Process32FirstW(snapshot.Get(), &entry); isThere != FALSE;
         isThere = ::Process32NextW(snapshot.Get(), &entry)) {
        if (entry.th32ParentProcessID == parent) {
            children.push_back(entry.th32ProcessID);
        }
    }
    return children;
}

void EndTree(void* root) {
    std::vector<Handle> found; // below the root; an open handle keeps a number from being given to another process
    for (std::size_t next = 0; next <= found.size(); ++next) {
        void* const process = next == 0 ? root : found[next - 1].Get();
        ::TerminateProcess(process, KilledCode); // first, so that it starts no more
        for (const DWORD id : ChildrenOf(::GetProcessId(process))) {
            Handle child(::OpenProcess(PROCESS_TERMINATE | PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, id));
            // An older process has only had a parent of the same number.
            if (child.IsOpen() && BirthOf(child.Get()) >= BirthOf(process)) {
                found.push_back(std::move(child));
            }
        }
    }
    for (const Handle& process : found) {
        ::WaitForSingleObject(process.Get(), LongestDying);
    }
}

} // namespace

Job Job::Around(void* process) noexcept {
    Job made;
    made.job_ = Handle(::CreateJobObjectW(nullptr, nullptr));
    if (made.IsOpen() &&
        (!SetKillOnClose(made.job_.Get(), true) || ::AssignProcessToJobObject(made.job_.Get(), process) == FALSE)) {
        made.job_.Reset();
    }
    return made;
}

void Job::Terminate() noexcept {
    std::vector<Handle> processes;
    try {
        // Opened before the end, since a number may be given anew right after it.
        for (const DWORD id : ProcessesOf(job_.Get())) {
            processes.emplace_back(::OpenProcess(SYNCHRONIZE, FALSE, id));
        }
    } catch (...) {
        processes.clear(); // no memory for the list: then they are not waited for
    }
    ::TerminateJobObject(job_.Get(), KilledCode);
    for (const Handle& process : processes) {
        if (process.IsOpen()) {
            ::WaitForSingleObject(process.Get(), LongestDying);
        }
    }
}

void Job::LetGo() noexcept {
    SetKillOnClose(job_.Get(), false);
}

ProcessCost Job::Cost() const noexcept {
    JOBOBJECT_BASIC_ACCOUNTING_INFORMATION times{};
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION memory{};
    ::QueryInformationJobObject(job_.Get(), JobObjectBasicAccountingInformation, &times, sizeof times, nullptr);
    ::QueryInformationJobObject(job_.Get(), JobObjectExtendedLimitInformation, &memory, sizeof memory, nullptr);
    const auto ticks = static_cast<std::uint64_t>(times.TotalUserTime.QuadPart + times.TotalKernelTime.QuadPart);
    return {.processor = DurationOf(ticks), .peakMemory = memory.PeakJobMemoryUsed};
}

ProcessCost CostOf(void* process, const Job& job) noexcept {
    FILETIME ignored{};
    FILETIME system{};
    FILETIME own{};
    PROCESS_MEMORY_COUNTERS memory{};
    ::GetProcessTimes(process, &ignored, &ignored, &system, &own);
    ::K32GetProcessMemoryInfo(process, &memory, sizeof memory);
    ProcessCost cost = {.processor = DurationOf(TicksOf(system) + TicksOf(own)),
                        .peakMemory = std::max<std::uint64_t>(memory.PeakWorkingSetSize, memory.PeakPagefileUsage)};
    if (job.IsOpen()) {
        // A system that keeps no account of jobs answers with zeros.
        const ProcessCost all = job.Cost();
        cost.processor = std::max(cost.processor, all.processor);
        cost.peakMemory = std::max(cost.peakMemory, all.peakMemory);
    }
    return cost;
}

void TerminateTree(void* process) noexcept {
    try {
        EndTree(process);
    } catch (...) {
        ::TerminateProcess(process, KilledCode); // no memory for the rest
    }
}

} // namespace Orvanta
