#pragma once

#include "platform/ProcessCost.h"
#include "platform/windows/Handle.h"

namespace Orvanta {

/// The job that a child and all it starts belong to. Not open where the system allows none. A job that goes away with
/// its child still running ends all of it, also when this program itself is killed.
class Job {
public:
    /// Puts a process that has not run yet into a job of its own.
    static Job Around(void* process) noexcept;

    /// Whether there is such a job.
    [[nodiscard]] bool IsOpen() const noexcept { return job_.IsOpen(); }

    /// Ends every process of the job and waits until they are gone: until then they hold their files.
    void Terminate() noexcept;

    /// From now on, what is left in the job outlives it.
    void LetGo() noexcept;

    /// What all processes of the job have taken so far, those that have ended included.
    [[nodiscard]] ProcessCost Cost() const noexcept;

private:
    Handle job_;
};

/// What a process that has ended took, with the rest of its job where it has one; without the wall time.
[[nodiscard]] ProcessCost CostOf(void* process, const Job& job) noexcept;

/// Ends a process and all that it started, found from the system's list of processes.
void TerminateTree(void* process) noexcept;

} // namespace Orvanta
