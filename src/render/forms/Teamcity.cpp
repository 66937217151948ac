#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"
#include "report/AnalyzerType.h"

#include <set>

namespace OrvlogConverter {

namespace {

/// One line for each message: the server reads them from the log of a build, whatever stands between them.
class TeamcityOutput : public FormOutput {
public:
    TeamcityOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& /*text*/) override {}

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        constexpr std::string_view Severities[LevelRanks] = {"ERROR", "WARNING", "WEAK WARNING", "INFO"};
        const Finding finding = FindingOf(message);
        // A type is declared before its first inspection.
        if (declared_.emplace(finding.rule).second) {
            const std::string address = HelpAddress(message.code);
            text += "##teamcity[inspectionType";
            AppendValue(text, "id", finding.rule);
            AppendValue(text, "name", finding.rule);
            // A type needs a description, so a rule without a page has its name there.
            AppendValue(text, "description", address.empty() ? finding.rule : std::string_view(address));
            AppendValue(text, "category", GroupName(ClassifyCode(message.code)));
            text += "]\n";
        }
        text += "##teamcity[inspection";
        AppendValue(text, "typeId", finding.rule);
        AppendValue(text, "message", finding.text);
        AppendValue(text, "file", HasFile(message) ? std::string_view(paths_.Shown(finding.file)) : finding.file);
        AppendValue(text, "line", std::to_string(finding.line));
        AppendValue(text, "SEVERITY", Severities[LevelRank(message.level)]);
        text += "]\n";
    }

    void AppendTail(std::string& /*text*/) override {}

private:
    // Appends ` name='value'`; only the value is escaped.
    static void AppendValue(std::string& text, std::string_view name, std::string_view value) {
        text += ' ';
        text += name;
        text += "='";
        AppendEscaped(text, value, TextForm::ServiceMessage);
        text += '\'';
    }

    SourcePaths paths_;
    // The rules whose type has been written.
    std::set<std::string, std::less<>> declared_;
};

} // namespace

std::unique_ptr<IOutput> MakeTeamcityOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<TeamcityOutput>(path, settings);
}

} // namespace OrvlogConverter
