#pragma once

#include "analysis/RunOutcome.h"
#include "analysis/RunPass.h"
#include "app/AnalyzeOptions.h"
#include "app/ReportMark.h"
#include "buildinput/CompileCommand.h"
#include "buildinput/SourceList.h"
#include "history/UnitHistory.h"
#include "history/UnitIdentities.h"
#include "platform/Fingerprint.h"
#include "platform/Log.h"
#include "settings/RunSettings.h"

#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// What a run knows of earlier ones, and leaves to later ones: the history of its units, and which report on disk is
/// whole. Costs time when it can't be read or written, and nothing else. One thread uses it, but for `Units`.
class RunHistory {
public:
    /// Where the run's report and its history are.
    struct Places {
        std::string orvantaFolder;
        ResultMakers makers;
        std::string reportPath; ///< empty: the findings go to standard output
    };

    /// Reads what is kept, and says in the log what can't be read. All outlive the object.
    RunHistory(const AnalyzeOptions& options, const RunSettings& settings, std::span<const CompileCommand> units,
               Places places, Log& log);

    [[nodiscard]] UnitHistory& Units() noexcept { return units_; }

    /// The units whose dependencies are to be listed before units are selected.
    [[nodiscard]] std::vector<UnitAction> SelectForListing();

    /// The units of a run by a list of files. Says which files are part of no unit, and which units are not listed.
    [[nodiscard]] std::vector<UnitAction> SelectListedUnits(std::span<const ListedFile> listed);

    /// \throws ZelmException when none of the listed files is there, nor has been one of those that units are made of
    void RequireListedFile(std::span<const ListedFile> listed) const;

    /// The units of any other run: those that have changed, or all.
    [[nodiscard]] std::vector<UnitAction> SelectUnits();

    /// Whether the report on disk holds what all these units found, and no other.
    [[nodiscard]] bool IsReportWhole();

    /// Keeps what came of the units. Returns whether all could be written; the log says why not.
    bool Save(const RunOutcome& outcome);

    /// Keeps that the report on disk is whole.
    void MarkReport();

private:
    void Read();
    [[nodiscard]] Fingerprint ReportContents();

    const AnalyzeOptions& options_;
    const RunSettings& settings_;
    std::span<const CompileCommand> commands_;
    Places places_;
    Log& log_;
    Fingerprint names_; // of the units, in order
    UnitHistory units_;
    ReportMark mark_;
};

} // namespace Orvanta
