#pragma once

#include "render/RenderTypes.h"
#include "report/IOutput.h"

#include <memory>
#include <string>

namespace OrvlogConverter {

// The writers of the forms, one source each. All throw FilesystemException when `path` can't be written; "-" is
// standard output.

/// "FILE:LINE:1: KIND: TEXT [RULE]", as compilers write and editors read it.
[[nodiscard]] std::unique_ptr<IOutput> MakeTextOutput(const std::string& path, const RenderSettings& settings);
/// A table for spreadsheets: a row of names, then one row for each finding.
[[nodiscard]] std::unique_ptr<IOutput> MakeCsvOutput(const std::string& path, const RenderSettings& settings);
/// How many findings there are by group and level, and by rule.
[[nodiscard]] std::unique_ptr<IOutput> MakeTotalsOutput(const std::string& path, const RenderSettings& settings);
/// SARIF 2.1.0, as platforms for code scanning take it.
[[nodiscard]] std::unique_ptr<IOutput> MakeSarifOutput(const std::string& path, const RenderSettings& settings);
/// The Code Quality report of GitLab.
[[nodiscard]] std::unique_ptr<IOutput> MakeGitlabOutput(const std::string& path, const RenderSettings& settings);
/// Workflow commands of GitHub, which become annotations when they stand in the log of a step.
[[nodiscard]] std::unique_ptr<IOutput> MakeGithubOutput(const std::string& path, const RenderSettings& settings);
/// Service messages of TeamCity: inspections.
[[nodiscard]] std::unique_ptr<IOutput> MakeTeamcityOutput(const std::string& path, const RenderSettings& settings);
/// Test results, one failed test for each finding, in the form that JUnit made common.
[[nodiscard]] std::unique_ptr<IOutput> MakeJunitOutput(const std::string& path, const RenderSettings& settings);
/// Generic issues of SonarQube.
[[nodiscard]] std::unique_ptr<IOutput> MakeSonarqubeOutput(const std::string& path, const RenderSettings& settings);
/// One page for a browser, which needs nothing beside it. Needs memory for the lines around the findings.
[[nodiscard]] std::unique_ptr<IOutput> MakeHtmlOutput(const std::string& path, const RenderSettings& settings);

} // namespace OrvlogConverter
