#include "suppress/SuppressWorker.h"

#include "platform/Files.h"

#include <utility>

namespace Orvanta {

using namespace OrvlogConverter;

namespace {

LogParserSettings SettingsFor(const std::string& reportPath) {
    LogParserSettings settings;
    settings.reports = {reportPath};
    settings.documentationLink = LogParserSettings::DocumentationLink::LeaveOut;
    return settings;
}

} // namespace

SuppressWorker::SuppressWorker(std::string basePath, std::string reportPath, SuppressFilterSettings filter,
                               const StopFlag& stop)
    : LogParserWorker(SettingsFor(reportPath), stop), basePath_(std::move(basePath)),
      reportPath_(std::move(reportPath)), filterSettings_(std::move(filter)), stop_(stop) {}

IOutput& SuppressWorker::BuildChain() {
    lock_.emplace(basePath_, stop_);
    output_.emplace(basePath_, PathExists(basePath_) ? SuppressBase::Read(basePath_) : SuppressBase());
    return filter_.emplace(&*output_, std::move(filterSettings_));
}

void SuppressWorker::Finish(const Counts& /*counts*/) {
    lock_.reset();
    PrintLine("Suppressed messages: " + std::to_string(output_->AddedCount()));
    PrintLine("Suppress file: " + basePath_);
    PrintLine("Log file: " + reportPath_);
}

} // namespace Orvanta
