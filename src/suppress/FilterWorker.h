#pragma once

#include "report/FinishedReport.h"
#include "report/LogParserWorker.h"
#include "report/SourceRootTransformer.h"
#include "suppress/SuppressBaseFilter.h"

#include <optional>
#include <string>

namespace Orvanta {

/// Removes from a report what a base holds. The report keeps its form, unless the output's name asks for another one.
class FilterWorker : public OrvlogConverter::LogParserWorker {
public:
    /// Without an output, and with one that is the report itself, the report is replaced in its place.
    FilterWorker(std::string basePath, std::string reportPath, const std::optional<std::string>& outputPath,
                 const StopFlag& stop);
    ~FilterWorker() override;

protected:
    OrvlogConverter::IOutput& BuildChain() override;
    void TakeMember(const std::string& key, const std::string& value) override;
    void Finish(const Counts& counts) override;

private:
    void ReplaceReport();

    std::string basePath_;
    std::string reportPath_; // behind links, when it is replaced
    std::string outputPath_;
    bool isInPlace_;
    OrvlogConverter::SuppressBase base_;
    std::optional<OrvlogConverter::FinishedReport> output_;
    std::optional<OrvlogConverter::SuppressBaseFilter> filter_;
    std::optional<OrvlogConverter::SourceRootTransformer> root_;
};

} // namespace Orvanta
