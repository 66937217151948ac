#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"

namespace OrvlogConverter {

namespace {

/// One line for each finding: the runner reads the commands from the log of a step, whatever stands between them.
class GithubOutput : public FormOutput {
public:
    GithubOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& /*text*/) override {}

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        // There are three kinds of annotations, so the two lowest ranks share one.
        constexpr std::string_view Commands[LevelRanks] = {"::error ", "::warning ", "::notice ", "::notice "};
        const Finding finding = FindingOf(message);
        text += Commands[LevelRank(message.level)];
        // Without a file the annotation belongs to the step as a whole, which is better than to a file that is not
        // there.
        if (HasFile(message)) {
            text += "file=";
            AppendEscaped(text, paths_.Shown(finding.file), TextForm::WorkflowProperty);
            text += ",line=" + std::to_string(finding.line) + ",";
        }
        text += "title=";
        AppendEscaped(text, finding.rule, TextForm::WorkflowProperty);
        text += "::";
        AppendEscaped(text, finding.text, TextForm::WorkflowMessage);
        text += '\n';
    }

    void AppendTail(std::string& /*text*/) override {}

private:
    SourcePaths paths_;
};

} // namespace

std::unique_ptr<IOutput> MakeGithubOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<GithubOutput>(path, settings);
}

} // namespace OrvlogConverter
