#pragma once

#include "platform/StopFlag.h"
#include "report/IWorker.h"
#include "suppress/SuppressFilter.h"

#include <string>

namespace Orvanta {

/// Adds the messages of a report to a base, which is made when there is none.
class SuppressWorker : public OrvlogConverter::IWorker {
public:
    /// `stop` outlives the worker.
    SuppressWorker(std::string basePath, std::string reportPath, OrvlogConverter::SuppressFilterSettings filter,
                   const StopFlag& stop);

    /// \throws OrvlogConverter::ReportException
    /// \throws ZelmException when it can't be told whether there is a base, or another run holds it for too long
    void Run() override;

private:
    std::string basePath_;
    std::string reportPath_;
    OrvlogConverter::SuppressFilterSettings filter_;
    const StopFlag& stop_;
};

} // namespace Orvanta
