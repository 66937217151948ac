#pragma once

#include "report/LogParserWorker.h"
#include "suppress/BaseLock.h"
#include "suppress/SuppressBaseOutput.h"
#include "suppress/SuppressFilter.h"

#include <optional>
#include <string>

namespace Orvanta {

/// Adds the messages of a report to a base, which is made when there is none.
class SuppressWorker : public OrvlogConverter::LogParserWorker {
public:
    SuppressWorker(std::string basePath, std::string reportPath, OrvlogConverter::SuppressFilterSettings filter,
                   const StopFlag& stop);

protected:
    OrvlogConverter::IOutput& BuildChain() override;
    void Finish(const Counts& counts) override;

private:
    std::string basePath_;
    std::string reportPath_;
    OrvlogConverter::SuppressFilterSettings filterSettings_;
    const StopFlag& stop_;
    std::optional<BaseLock> lock_; // from before the base is read until it is written
    std::optional<OrvlogConverter::SuppressBaseOutput> output_;
    std::optional<OrvlogConverter::SuppressFilter> filter_;
};

} // namespace Orvanta
