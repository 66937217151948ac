#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"

namespace OrvlogConverter {

namespace {

class GithubOutput : public FormOutput {
public:
    GithubOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& /*text*/) override {}

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        constexpr std::string_view Commands[LevelRanks] = {"::error ", "::warning ", "::notice ", "::notice "};
        const Finding finding = FindingOf(message);
        text += Commands[LevelRank(message.level)];
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
