#include "suppress/FilterWorker.h"

#include "platform/Console.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "report/FinishedReport.h"
#include "report/ReportPass.h"
#include "report/WholeFile.h"
#include "suppress/NoticeFilter.h"
#include "suppress/SuppressBaseFilter.h"

#include <cstddef>
#include <string_view>
#include <utility>

namespace Orvanta {

using namespace OrvlogConverter;

namespace {

// By the path and by what is there: a link to the report is the report, a path where nothing is yet has only its name.
bool IsSamePlace(const std::string& left, const std::string& right) {
    return AbsolutePath(left) == AbsolutePath(right) || IsSameFile(left, right);
}

// Only a document can have other members, and only lines can be copied among lines.
ReportForm FormOfOutput(ReportForm input, const std::string& outputPath) {
    if (IsJsonDocumentName(outputPath)) {
        return ReportForm::JsonDocument;
    }
    return input == ReportForm::JsonDocument ? ReportForm::JsonLines : input;
}

} // namespace

FilterWorker::FilterWorker(std::string basePath, std::string reportPath, const std::optional<std::string>& outputPath,
                           const StopFlag& stop)
    : basePath_(std::move(basePath)), reportPath_(std::move(reportPath)), outputPath_(outputPath.value_or(reportPath_)),
      isInPlace_(IsSamePlace(outputPath_, reportPath_)), stop_(stop) {}

void FilterWorker::Run() {
    // Before the output is opened: a broken base leaves it as it was.
    const SuppressBase base = SuppressBase::Read(basePath_);
    if (isInPlace_) {
        // A pipe could be read only once, and a protected report stays as it is.
        WholeFile::RequireReplaceable(reportPath_);
    }
    const ReportLook look = LookAtReport(reportPath_);
    const ReportForm input = look.form;
    const ReportForm form = isInPlace_ ? input : FormOfOutput(input, outputPath_);
    FinishedReport output(isInPlace_ ? reportPath_ : outputPath_, {form, look.hasMark});
    // Messages of one kind are copied as they stand, so that nothing which the record has no room for is lost.
    const bool isSameKind = (form == ReportForm::JsonDocument) == (input == ReportForm::JsonDocument);
    if (!isSameKind && form == ReportForm::JsonDocument) {
        // A document made from lines: a copied one brings its own members along.
        output.AddMember("version", "1");
    }
    // The report may have been filtered by such a base before.
    NoticeFilter notices(&output);
    SuppressBaseFilter filter(&notices, &base);
    // The notice of an outdated base comes first, before the first message.
    filter.Begin();
    const auto takeMessage = [&](const ReportMessage& message, std::string_view text) {
        if (!filter.Accept(message) || !notices.Accept(message)) {
            return;
        }
        if (isSameKind) {
            output.Copy(text);
        } else {
            output.Write(message);
        }
    };
    const auto takeMember = [&output](const std::string& key, const std::string& value) {
        output.AddMember(key, value);
    };
    const std::size_t total = PassReport(reportPath_, {takeMessage, takeMember}, stop_);
    filter.End();
    // Only after `End`, which has put the report in its place: what is told has happened.
    PrintLine("Suppress file: " + basePath_);
    PrintLine("Total messages: " + std::to_string(total));
    PrintLine("Filtered messages: " + std::to_string(output.Count()));
}

} // namespace Orvanta
