#pragma once

#include "platform/StopFlag.h"
#include "report/FinishedReport.h"
#include "report/IWorker.h"
#include "report/MessageFilter.h"
#include "report/MultipleOutput.h"
#include "report/RenderTypes.h"
#include "report/SourceRootTransformer.h"

#include <cstddef>
#include <memory>
#include <optional>
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

/// Reads reports and passes their messages through a chain of stages. The base renders them; derived workers build
/// another chain and tell another end.
class LogParserWorker : public IWorker {
public:
    /// `stop` outlives the worker.
    LogParserWorker(LogParserSettings settings, const Orvanta::StopFlag& stop);

    /// Outputs take their places only when every report was read.
    /// \throws ReportException
    void Run() override;

protected:
    struct Counts {
        std::size_t total = 0; ///< messages read
        std::size_t taken = 0; ///< those that reached an output
    };

    /// Makes the stages and returns the first; this object keeps them.
    virtual IOutput& BuildChain();
    /// Tells the user how it ended, after the end of the chain.
    virtual void Finish(const Counts& counts);
    virtual void TakeMember(const std::string& key, const std::string& value);

    static void PrintLine(std::string text);

    [[nodiscard]] const LogParserSettings& Settings() const noexcept { return settings_; }

    /// The message being passed on.
    [[nodiscard]] const MessageOrigin& Origin() const noexcept { return origin_; }

private:
    void PrintIgnoredFlags() const;
    void Parse(const std::string& report, IOutput& chain, Counts& counts);

    LogParserSettings settings_;
    const Orvanta::StopFlag& stop_;
    MessageOrigin origin_;
    MultipleOutput outputs_;
    std::optional<SourceRootTransformer> root_;
};

} // namespace OrvlogConverter
