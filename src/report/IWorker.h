#pragma once

namespace OrvlogConverter {

/// A job that is run once.
class IWorker {
public:
    /// Does the work and tells its result on standard output. Failures are exceptions.
    virtual void Run() = 0;
    virtual ~IWorker() = default;
};

} // namespace OrvlogConverter
