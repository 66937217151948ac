#include "suppress/FilterWorker.h"

#include "platform/Files.h"
#include "platform/Paths.h"
#include "report/ReportReader.h"
#include "report/WholeFile.h"
#include "report/WriteFailure.h"

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
    : LogParserWorker(SettingsFor(reportPath), stop), basePath_(std::move(basePath)),
      reportPath_(std::move(reportPath)), isInPlace_(!outputPath || IsSamePlace(*outputPath, reportPath_)) {
    if (isInPlace_) {
        reportPath_ = ResolveLinks(reportPath_);
        outputPath_ = reportPath_ + ".new";
    } else {
        outputPath_ = *outputPath;
    }
}

FilterWorker::~FilterWorker() {
    if (isInPlace_ && output_) {
        RemoveFile(outputPath_); // of a run that failed
    }
}

IOutput& FilterWorker::BuildChain() {
    base_ = SuppressBase::Read(basePath_);
    if (isInPlace_) {
        WholeFile::RequireReplaceable(reportPath_);
    }
    const ReportForm input = DetectReportForm(reportPath_);
    const ReportForm form = isInPlace_ ? input : FormOfOutput(input, outputPath_);
    output_.emplace(outputPath_, form);
    if ((form == ReportForm::JsonDocument) == (input == ReportForm::JsonDocument)) {
        output_->CopyFrom(Origin());
    } else if (form == ReportForm::JsonDocument) {
        output_->AddMember("version", "1");
    }
    filter_.emplace(&*output_, &base_);
    return root_.emplace(&*filter_, "");
}

void FilterWorker::TakeMember(const std::string& key, const std::string& value) {
    output_->AddMember(key, value);
}

void FilterWorker::Finish(const Counts& counts) {
    if (isInPlace_) {
        ReplaceReport();
    }
    PrintLine("Suppress file: " + basePath_);
    PrintLine("Total messages: " + std::to_string(counts.total));
    PrintLine("Filtered messages: " + std::to_string(output_->Count()));
}

// One renaming: at every moment the report's name leads to the old report or to the new one.
void FilterWorker::ReplaceReport() {
    NamingFile(reportPath_, [this] { PutInPlaceOf(outputPath_, reportPath_); });
}

} // namespace Orvanta
