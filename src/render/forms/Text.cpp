#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"

namespace OrvlogConverter {

namespace {

/// Column 1 in each line: reports know no columns, and many editors want one to jump to.
class TextOutput : public FormOutput {
public:
    using FormOutput::FormOutput;

protected:
    void AppendHead(std::string& /*text*/) override {}

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        // Compilers know these three words; another one would not be highlighted.
        constexpr std::string_view Kinds[LevelRanks] = {":1: error: ", ":1: warning: ", ":1: note: ", ":1: note: "};
        const Finding finding = FindingOf(message);
        // The file too: a name may hold a line break or a control sequence of terminals.
        AppendEscaped(text, finding.file, TextForm::Line);
        text += ':';
        text += std::to_string(finding.line);
        text += Kinds[LevelRank(message.level)];
        AppendEscaped(text, finding.text, TextForm::Line);
        text += " [";
        AppendEscaped(text, finding.rule, TextForm::Line);
        text += "]\n";
    }

    void AppendTail(std::string& /*text*/) override {}
};

} // namespace

std::unique_ptr<IOutput> MakeTextOutput(const std::string& path, const RenderSettings& /*settings*/) {
    return std::make_unique<TextOutput>(path);
}

} // namespace OrvlogConverter
