#pragma once

#include "analysis/RunPlaces.h"
#include "app/AnalyzeInput.h"
#include "history/RunJournal.h"
#include "platform/Log.h"

#include <memory>

namespace Orvanta {

/// Opens the journal of a run whose units all run, with what an interrupted run has left when the user wants to go on:
/// the log says so when that is nothing. Null for a run that keeps none: one with a history, which does better, one in
/// stages, one without a report on disk, and one that can't write it.
[[nodiscard]] std::unique_ptr<RunJournal> OpenJournal(const AnalyzeInput& input, const RunPlaces& places, Log& log);

} // namespace Orvanta
