#include "analysis/ReportCommitter.h"

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

// What an earlier run found can't be lost any more: it need not be on disk at once.
constexpr std::size_t CarriedTogether = 256;

void MarkFailed(UnitResult& result, std::string reason) {
    if (!IsFailure(result.status)) { // the first reason stays
        result.status = AnalyzerStatus::Failed;
        result.reason = std::move(reason);
    }
}

} // namespace

ReportCommitter::ReportCommitter(std::size_t units, OrvlogConverter::ReportOutput& output,
                                 OrvlogConverter::IOutput& chain)
    : output_(output), chain_(&chain) {
    outcome_.statuses.assign(units, AnalyzerStatus::Stopped);
}

void ReportCommitter::Commit(std::size_t unit, UnitResult result) {
    const std::lock_guard lock(mutex_);
    waiting_.emplace(unit, std::move(result));
    CommitReady(lock);
}

void ReportCommitter::CommitReady(Locked lock) {
    for (auto ready = waiting_.find(next_); ready != waiting_.end(); ready = waiting_.find(next_)) {
        CommitUnit(lock, next_, ready->second);
        waiting_.erase(ready);
        ++next_;
    }
}

void ReportCommitter::CommitUnit(Locked lock, std::size_t unit, UnitResult& result) {
    unitFindings_ = {};
    if (!result.fragmentPath.empty()) {
        if (result.status != AnalyzerStatus::Stopped) {
            try {
                PassOnFragment(lock, result);
            } catch (const FileException& error) {
                MarkFailed(result, std::string("The core's findings can't be read: ") + error.what());
            }
        }
        RemoveFile(result.fragmentPath);
    }
    PassOnKept(lock, result);
    for (const OrvlogConverter::ReportMessage& message : result.ownFindings) {
        PassOn(lock, message);
    }
    try {
        if (result.status != AnalyzerStatus::CarriedOver || ++carriedSinceCommit_ == CarriedTogether) {
            output_.Commit();
            carriedSinceCommit_ = 0;
        }
        for (std::size_t level = 0; level < unitFindings_.size(); ++level) {
            outcome_.findingsByLevel[level] += unitFindings_[level];
        }
    } catch (const std::exception& error) {
        MarkFailed(result, error.what());
    }
    outcome_.Settle(unit, result);
}

// A core that found nothing may have made no file. One that failed may have left half a line; every whole finding is
// kept all the same.
void ReportCommitter::PassOnFragment(Locked lock, UnitResult& result) {
    if (!PathExists(result.fragmentPath)) {
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

void ReportCommitter::PassOnKept(Locked lock, UnitResult& result) {
    std::string_view rest = result.keptFindings;
    for (std::size_t number = 1; !rest.empty(); ++number) {
        PassOnLine(lock, TakeLine(rest), number, result);
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
        ++unitFindings_[message.level < unitFindings_.size() ? message.level : 0];
    }
}

} // namespace Orvanta
