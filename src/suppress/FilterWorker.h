#pragma once

#include "platform/StopFlag.h"
#include "report/IWorker.h"

#include <optional>
#include <string>

namespace Orvanta {

/// Removes from a report what a base holds. The report keeps its form, unless the output's name asks for another one.
class FilterWorker : public OrvlogConverter::IWorker {
public:
    /// Without an output, and with one that is the report itself, the report is replaced in its place. `stop` outlives
    /// the worker.
    FilterWorker(std::string basePath, std::string reportPath, const std::optional<std::string>& outputPath,
                 const StopFlag& stop);

    /// The output takes its place only when the report was read to its end.
    /// \throws OrvlogConverter::ReportException
    void Run() override;

private:
    std::string basePath_;
    std::string reportPath_;
    std::string outputPath_;
    bool isInPlace_;
    const StopFlag& stop_;
};

} // namespace Orvanta
