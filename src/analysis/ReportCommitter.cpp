#include "analysis/ReportCommitter.h"

#include "analysis/ScopedFile.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/NativePath.h"
#include "platform/Text.h"
#include "report/MessageLine.h"

#include <cerrno>
#include <exception>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace Orvanta {

namespace {

// What an earlier run found can't be lost any more: it need not be on disk at once. So what has not changed costs a few
// writes of the report in all, and little memory.
constexpr std::size_t UnitsTogether = 256;
constexpr std::size_t BytesTogether = std::size_t{1} << 20U;

// Whether the unit took no time: its findings, if any, were known.
bool IsSettled(AnalyzerStatus status) {
    return status == AnalyzerStatus::CarriedOver || status == AnalyzerStatus::Excluded ||
           status == AnalyzerStatus::NotListed || status == AnalyzerStatus::Stopped;
}

void MarkFailed(UnitResult& result, std::string reason) {
    if (!IsFailure(result.status)) { // the first reason stays
        result.status = AnalyzerStatus::Failed;
        result.reason = std::move(reason);
    }
}

} // namespace

ReportCommitter::ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output,
                                 OrvlogConverter::IOutput& chain, KeptFindings keptFindings)
    : output_(output), chain_(&chain), keptFindings_(std::move(keptFindings)) {
    outcome_.statuses.assign(units, AnalyzerStatus::Stopped);
}

void ReportCommitter::Commit(std::size_t unit, UnitResult result) {
    const std::lock_guard lock(mutex_);
    const bool isSettled = IsSettled(result.status);
    waiting_.emplace(unit, std::move(result));
    for (auto ready = waiting_.find(next_); ready != waiting_.end(); ready = waiting_.find(next_)) {
        CommitUnit(lock, next_, ready->second);
        waiting_.erase(ready);
    }
    if (!isSettled) { // the next one that runs will take its time, too
        Publish(lock);
    }
}

void ReportCommitter::Flush() {
    const std::lock_guard lock(mutex_);
    Publish(lock);
}

void ReportCommitter::CommitUnit(Locked lock, std::size_t unit, UnitResult& result) {
    try {
        PassOnFragment(lock, result);
        if (result.status == AnalyzerStatus::CarriedOver) {
            PassOnLines(lock, keptFindings_(unit), result);
        }
    } catch (const std::exception& error) {
        MarkFailed(result, std::string("The core's findings can't be read: ") + error.what());
    }
    for (const OrvlogConverter::ReportMessage& message : result.ownFindings) {
        PassOn(lock, message);
    }
    outcome_.Settle(unit, result);
    ++next_;
    if (!IsSettled(result.status) || next_ - published_ >= UnitsTogether || bytesWaiting_ >= BytesTogether) {
        Publish(lock);
    }
}

// Puts on disk what was passed on since the last time. When that fails, the units whose findings it were have failed.
void ReportCommitter::Publish(Locked) {
    try {
        output_.Commit();
        for (std::size_t level = 0; level < findingsWaiting_.size(); ++level) {
            outcome_.findingsByLevel[level] += findingsWaiting_[level];
        }
    } catch (const std::exception& error) {
        for (; published_ < next_; ++published_) {
            const AnalyzerStatus status = outcome_.statuses[published_];
            if (status == AnalyzerStatus::CarriedOver || !IsSettled(status)) {
                outcome_.Fail(published_, error.what());
            }
        }
    }
    published_ = next_;
    findingsWaiting_ = {};
    bytesWaiting_ = 0;
}

// A core that found nothing may have made no file. One that failed may have left half a line; every whole finding is
// kept all the same.
void ReportCommitter::PassOnFragment(Locked lock, UnitResult& result) {
    if (result.fragmentPath.empty()) {
        return;
    }
    const ScopedFile file(result.fragmentPath);
    if (result.status == AnalyzerStatus::Stopped || !PathExists(result.fragmentPath)) {
        return;
    }
    std::ifstream fragment(NativePath(result.fragmentPath), std::ios::binary);
    if (!fragment.is_open()) {
        throw FileException(result.fragmentPath, std::generic_category().message(errno));
    }
    std::string line;
    for (std::size_t number = 1; std::getline(fragment, line); ++number) {
        PassOnLine(lock, line, number, result);
    }
    if (fragment.bad()) {
        throw FileException(result.fragmentPath, std::generic_category().message(errno));
    }
}

void ReportCommitter::PassOnLines(Locked lock, std::string_view lines, UnitResult& result) {
    bytesWaiting_ += lines.size();
    for (std::size_t number = 1; !lines.empty(); ++number) {
        PassOnLine(lock, TakeLine(lines), number, result);
    }
}

void ReportCommitter::PassOnLine(Locked lock, std::string_view line, std::size_t number, UnitResult& result) {
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (line.empty()) {
        return;
    }
    try {
        PassOn(lock, OrvlogConverter::ReadMessageLine(line));
    } catch (const std::exception& error) {
        MarkFailed(result, "Line " + std::to_string(number) + " of the core's findings can't be read: " + error.what());
    }
}

void ReportCommitter::PassOn(Locked, const OrvlogConverter::ReportMessage& message) {
    if (chain_.Write(message)) {
        ++findingsWaiting_[message.level < findingsWaiting_.size() ? message.level : 0];
    }
}

} // namespace Orvanta
