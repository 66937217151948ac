#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FindingNames.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"
#include "suppress/LineHash.h"

namespace OrvlogConverter {

namespace {

/// An array of issues. The platform compares the arrays of two branches by the fingerprints, and shows what is new.
class GitlabOutput : public FormOutput {
public:
    GitlabOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& text) override { text += '['; }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        // The platform knows a fifth word, "blocker", which would claim more than a level says.
        constexpr std::string_view Severities[LevelRanks] = {"critical", "major", "minor", "info"};
        const Finding finding = FindingOf(message);
        const std::string_view file = HasFile(message) ? std::string_view(paths_.Shown(finding.file)) : finding.file;
        text += isFirst_ ? "\n{\"description\": " : ",\n{\"description\": ";
        isFirst_ = false;
        AppendVisibleJson(text, finding.text);
        text += ", \"check_name\": ";
        AppendVisibleJson(text, finding.rule);
        text += ", \"fingerprint\": \"";
        text += UniqueName(message, file);
        text += "\", \"severity\": \"";
        text += Severities[LevelRank(message.level)];
        text += "\", \"location\": {\"path\": ";
        AppendVisibleJson(text, file);
        text += ", \"lines\": {\"begin\": ";
        text += std::to_string(finding.line);
        text += "}}}";
    }

    void AppendTail(std::string& text) override { text += "\n]\n"; }

private:
    // Of findings with one name, the platform shows one.
    // So the file and the ordinal go into it: equal entries of two files, or two in one file, are findings of their
    // own.
    std::string UniqueName(const ReportMessage& message, std::string_view file) {
        const FindingNames::Name name = names_.Next(MakeSuppressEntry(message, CurrentBaseVersion), file);
        Orvanta::FingerprintBuilder builder;
        return HexadecimalText(builder.Add(name.entry).Add(file).Add(name.ordinal).Value());
    }

    SourcePaths paths_;
    FindingNames names_;
    bool isFirst_ = true;
};

} // namespace

std::unique_ptr<IOutput> MakeGitlabOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<GitlabOutput>(path, settings);
}

} // namespace OrvlogConverter
