#include "suppress/SuppressWorker.h"

#include "platform/Console.h"
#include "platform/Files.h"
#include "report/ReportPass.h"
#include "suppress/BaseLock.h"
#include "suppress/SuppressBaseOutput.h"

#include <string_view>
#include <utility>

namespace Orvanta {

using namespace OrvlogConverter;

SuppressWorker::SuppressWorker(std::string basePath, std::string reportPath, SuppressFilterSettings filter,
                               const StopFlag& stop)
    : basePath_(std::move(basePath)), reportPath_(std::move(reportPath)), filter_(std::move(filter)), stop_(stop) {}

void SuppressWorker::Run() {
    std::size_t added = 0;
    {
        const BaseLock lock(basePath_, stop_); // from before the base is read until it is written
        SuppressBaseOutput output(basePath_, PathExists(basePath_) ? SuppressBase::Read(basePath_) : SuppressBase());
        SuppressFilter filter(&output, filter_);
        filter.Begin();
        const auto takeMessage = [&filter](const ReportMessage& message, std::string_view /*text*/) {
            filter.Write(message);
        };
        PassReport(reportPath_, {takeMessage}, stop_);
        // Writes the base: a report that can't be read to its end has thrown before, and adds nothing.
        filter.End();
        // The lock goes before anything is told: others need not wait for the console.
        added = output.AddedCount();
    }
    PrintLine("Suppressed messages: " + std::to_string(added));
    PrintLine("Suppress file: " + basePath_);
    PrintLine("Log file: " + reportPath_);
}

} // namespace Orvanta
