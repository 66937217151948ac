#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"
#include "report/AnalyzerType.h"

#include <algorithm>
#include <map>

namespace OrvlogConverter {

namespace {

// There are three severities, so the two lowest ranks share one.
constexpr std::string_view Impacts[LevelRanks] = {"HIGH", "MEDIUM", "LOW", "LOW"};

/// Issues, then the rules that they name: the platform knows a rule's severity, not an issue's.
class SonarqubeOutput : public FormOutput {
public:
    SonarqubeOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& text) override { text += "{\"issues\": ["; }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        const Finding finding = FindingOf(message);
        Rule& rule = rules_[std::string(finding.rule)];
        // The worst of its findings: none of them may look milder than it is.
        rule.worst = std::min(rule.worst, LevelRank(message.level));
        rule.code = message.code;
        text += isFirst_ ? "\n{\"ruleId\": " : ",\n{\"ruleId\": ";
        isFirst_ = false;
        AppendVisibleJson(text, finding.rule);
        text += ", \"primaryLocation\": ";
        AppendLocation(text, finding.text, finding.file, finding.line);
        if (message.positions.size() > 1) {
            text += ", \"secondaryLocations\": [";
            for (std::size_t at = 1; at < message.positions.size(); ++at) {
                const MessagePosition& position = message.positions[at];
                text += at == 1 ? "" : ", ";
                // Only the primary place needs a message.
                AppendLocation(text, "", position.file, std::max(position.line, 1U));
            }
            text += ']';
        }
        text += '}';
    }

    void AppendTail(std::string& text) override {
        text += "\n], \"rules\": [";
        bool isFirst = true;
        for (const auto& [id, rule] : rules_) {
            const std::string address = HelpAddress(rule.code);
            text += isFirst ? "\n{\"id\": " : ",\n{\"id\": ";
            isFirst = false;
            AppendVisibleJson(text, id);
            text += ", \"name\": ";
            AppendVisibleJson(text, id);
            text += ", \"description\": ";
            AppendVisibleJson(text, address.empty() ? GroupName(ClassifyCode(rule.code)) : std::string_view(address));
            text += ", \"engineId\": \"orvanta-analyzer\", \"cleanCodeAttribute\": \"LOGICAL\", \"impacts\": "
                    "[{\"softwareQuality\": \"RELIABILITY\", \"severity\": \"";
            text += Impacts[rule.worst];
            text += "\"}]}";
        }
        text += "\n]}\n";
    }

private:
    /// What the issues of a rule share.
    struct Rule {
        std::size_t worst = LevelRanks - 1;
        std::string code = {};
    };

    // An empty `message` leaves the member out.
    void AppendLocation(std::string& text, std::string_view message, std::string_view file, std::uint32_t line) const {
        text += '{';
        if (!message.empty()) {
            text += "\"message\": ";
            AppendVisibleJson(text, message);
            text += ", ";
        }
        text += "\"filePath\": ";
        AppendVisibleJson(text, paths_.Shown(file));
        text += ", \"textRange\": {\"startLine\": " + std::to_string(line) + "}}";
    }

    SourcePaths paths_;
    std::map<std::string, Rule> rules_;
    bool isFirst_ = true;
};

} // namespace

std::unique_ptr<IOutput> MakeSonarqubeOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<SonarqubeOutput>(path, settings);
}

} // namespace OrvlogConverter
