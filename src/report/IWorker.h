#pragma once

namespace OrvlogConverter {

/// A job that is run once.
class IWorker {
public:
    virtual void Run() = 0;
    virtual ~IWorker() = default;
};

} // namespace OrvlogConverter
