#pragma once

#include "platform/StopFlag.h"
#include "render/RenderTypes.h"
#include "report/IWorker.h"
#include "report/MessageFilter.h"
#include "report/MultipleOutput.h"

#include <string>
#include <vector>

namespace OrvlogConverter {

/// What a `LogParserWorker` is to do.
struct LogParserSettings {
    enum class DocumentationLink { Write, LeaveOut };

    std::vector<std::string> reports; ///< read in this order
    std::vector<RenderTarget> targets = {};
    MessageFilterSettings filter = {};
    std::string sourceRoot = {}; ///< put in the place of "|?|"; empty leaves it
    DocumentationLink documentationLink = DocumentationLink::Write;
    RenderSettings render = {};
};

/// Renders reports: passes their messages through the filters into files of other forms, and says how many there were.
class LogParserWorker : public IWorker {
public:
    /// `stop` outlives the worker.
    LogParserWorker(LogParserSettings settings, const Orvanta::StopFlag& stop);

    /// Outputs take their places only when every report was read.
    /// \throws ReportException
    void Run() override;

private:
    void PrintIgnoredFlags() const;
    void OpenTargets();
    void AddChecked(const std::string& report, const std::string& checked) const;

    LogParserSettings settings_;
    const Orvanta::StopFlag& stop_;
    MultipleOutput outputs_;
};

} // namespace OrvlogConverter
