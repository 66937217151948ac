#pragma once

#include "app/AnalyzeOptions.h"
#include "platform/Console.h"
#include "report/MessageLine.h"
#include "report/ReportOutputs.h"
#include "settings/RunSettings.h"

#include <functional>
#include <memory>
#include <string>

namespace Orvanta {

/// The settings of a run: the defaults, the settings file over them, the given options over both.
/// `warn` gets a line for each key of the file that must be a slip.
/// \throws ZelmException
[[nodiscard]] RunSettings MakeRunSettings(const AnalyzeOptions& options,
                                          const std::function<void(const std::string& line)>& warn = PrintLine);

/// How a value that names a path or a mask counts: paths from the current folder, masks as they are.
[[nodiscard]] std::string PathOrMask(const std::string& value);

/// The number of workers: the option's, else one for each processor that the process may use.
/// \throws ZelmException when the option is no number of 1 or more
[[nodiscard]] unsigned ThreadCount(const AnalyzeOptions& options);

/// The absolute path of the run's report, or of a shard's part; empty when the findings go to standard output, and for
/// a stage that makes none.
[[nodiscard]] std::string ReportPath(const AnalyzeOptions& options, const RunSettings& settings);

/// The folder whose ".Orvanta" keeps what later runs need: the report's; of findings that go to standard output, the
/// one where the user stands.
[[nodiscard]] std::string OutputFolderOf(const std::string& reportPath);

/// The folder that the report writes as "|?|"; empty when paths stay as they are.
[[nodiscard]] std::string SourceTreeRoot(const RunSettings& settings);

/// The keys of settings by which a report is written.
inline constexpr const char* ReportSettings[] = {"analysis-mode", "new-output-format", SourceTreeRootKey};

/// The output for a report: one JSON document for a name in ".json", else lines in the form that the settings ask for.
/// \throws OrvlogConverter::FilesystemException when it can't be written
[[nodiscard]] std::unique_ptr<OrvlogConverter::ReportOutput> OpenReport(const std::string& reportPath,
                                                                        const RunSettings& settings);

/// The same for a report whose findings are all known: it takes its place in `End`, and until then an earlier one
/// stands there. Commits write nothing.
[[nodiscard]] std::unique_ptr<OrvlogConverter::ReportOutput> OpenWholeReport(const std::string& reportPath,
                                                                             const RunSettings& settings);

} // namespace Orvanta
