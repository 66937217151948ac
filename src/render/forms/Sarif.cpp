// Static Analysis Results Interchange Format, version 2.1.0. The results come first and what they share behind them, so
// that they need not be held: a reader finds members by their names.

#include "platform/Text.h"
#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FindingNames.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"
#include "report/AnalyzerType.h"
#include "report/DocumentationLink.h"
#include "suppress/LineHash.h"
#include "suppress/SuppressBase.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

namespace OrvlogConverter {

namespace {

constexpr std::string_view Levels[LevelRanks] = {"error", "warning", "note", "none"};

// What the largest platform takes of one run.
constexpr std::size_t MostResults = 25000;
constexpr std::size_t MostShownResults = 5000;
constexpr std::size_t MostPackedBytes = 10'000'000;
// Packed by gzip, reports of real projects take a seventh to a fourteenth of their size.
constexpr std::size_t LeastPacking = 7;

/// What the results of one rule share; it is complete when all of them were seen.
struct Rule {
    std::string id;
    std::string code;
    std::size_t worst = LevelRanks - 1;
    std::set<std::uint32_t> weaknesses = {}; // CWE numbers
};

// Appends `"name": "value"`. Names are ours, so only the value is escaped.
void AppendMember(std::string& text, std::string_view name, std::string_view value) {
    text += '"';
    text += name;
    text += "\": ";
    AppendVisibleJson(text, value);
}

/// Holds the rules, the weaknesses and a fingerprint for each result, but not the results.
class SarifOutput : public FormOutput {
public:
    SarifOutput(const std::string& path, RenderSettings settings)
        : FormOutput(path), settings_(std::move(settings)), paths_(settings_.sourceRoot) {}

    void End() override {
        // A report that could not be written has no limits worth telling of.
        FormOutput::End();
        TellLimits();
    }

protected:
    void AppendHead(std::string& text) override {
        text += "{\"$schema\": "
                "\"https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json\", "
                "\"version\": \"2.1.0\", \"runs\": [{\"results\": [";
    }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        // A unit that failed is no result of the analysis: readers would show it as a fault in code, and count it.
        if (message.code == FailedUnitCode) {
            AppendFailure(message);
            return;
        }
        const std::size_t begin = text.size();
        text += results_ == 0 ? "\n" : ",\n";
        AppendResult(text, message);
        ++results_;
        bytes_ += text.size() - begin;
    }

    void AppendTail(std::string& text) override {
        text += "\n],\n\"columnKind\": \"unicodeCodePoints\",\n\"originalUriBaseIds\": {\"SRCROOT\": {";
        // Otherwise the address would only tell where the report was rendered.
        if (settings_.namesSourceRoot) {
            AppendMember(text, "uri", paths_.RootAddress());
            text += ", ";
        }
        text += "\"description\": {\"text\": \"The root of the source tree.\"}}},\n\"invocations\": "
                "[{\"executionSuccessful\": ";
        // One unit that failed is enough: the report then lacks findings that there may be.
        text += failures_.empty() ? "true" : "false";
        text += ", \"toolExecutionNotifications\": [" + failures_ + "]}],\n";
        AppendTaxonomies(text);
        text += "\"tool\": {\"driver\": {\"name\": \"Orvanta\", ";
        AppendMember(text, "version", settings_.programVersion);
        text += ", ";
        AppendMember(text, "informationUri", DocumentationAddress);
        text += ", \"supportedTaxonomies\": [{\"name\": \"CWE\", \"index\": 0}], \"rules\": [";
        for (const Rule& rule : rules_) {
            text += &rule == rules_.data() ? "\n" : ",\n";
            AppendRule(text, rule);
        }
        text += "\n]}}\n}]}\n";
    }

private:
    // Notes the result with its rule, and returns the place of the rule among the rules.
    std::size_t IndexOf(const Finding& finding, const ReportMessage& message) {
        const auto [row, isNew] = indices_.emplace(finding.rule, rules_.size());
        if (isNew) {
            rules_.push_back({std::string(finding.rule), message.code});
        }
        Rule& rule = rules_[row->second];
        rule.worst = std::min(rule.worst, LevelRank(message.level));
        if (message.cwe != 0) {
            rule.weaknesses.insert(message.cwe);
            weaknesses_.insert(message.cwe);
        }
        return row->second;
    }

    void AppendResult(std::string& text, const ReportMessage& message) {
        const Finding finding = FindingOf(message);
        text += '{';
        AppendMember(text, "ruleId", finding.rule);
        // By index beside the id: readers then need no search, and the rules may stand behind the results.
        text += ", \"ruleIndex\": " + std::to_string(IndexOf(finding, message)) + ", ";
        AppendMember(text, "level", Levels[LevelRank(message.level)]);
        text += ", \"message\": {";
        AppendMember(text, "text", finding.text);
        text += "}, \"locations\": [";
        // Without a place the array stands there all the same, empty.
        if (HasFile(message)) {
            AppendLocation(text, message.positions.front(), Role::Primary);
        }
        text += ']';
        AppendRelated(text, message);
        const SuppressEntry entry = MakeSuppressEntry(message, CurrentBaseVersion);
        const FindingNames::Name name = names_.Next(entry, finding.file);
        // With the ordinal: results of one file with equal fingerprints would be taken for one.
        const std::string fingerprint = HexadecimalText(name.entry) + ":" + std::to_string(name.ordinal);
        // Under two names: the first says how it was made, the second is the one that the largest platform looks for.
        // When that is missing, the platform makes its own from sources, which it may not have.
        text += ", \"partialFingerprints\": {\"suppressionEntry/v1\": \"" + fingerprint +
                "\", \"primaryLocationLineHash\": \"" + fingerprint + "\"}";
        if (!settings_.comparedWith.empty()) {
            // What the earlier report has was dropped before, so whatever arrives here is new.
            text += ", \"baselineState\": \"new\"";
        }
        AppendSuppressions(text, message);
        AppendProperties(text, message);
        text += '}';
    }

    enum class Role { Primary, Related };

    void AppendLocation(std::string& text, const MessagePosition& position, Role role) const {
        // Below the root, the path is told from it: then the report fits a checkout anywhere.
        const std::optional<std::string> below = paths_.BelowRoot(position.file);
        const std::uint32_t line = std::max(position.line, 1U);
        text += "{\"physicalLocation\": {\"artifactLocation\": {";
        AppendMember(text, "uri", AddressOf(below.value_or(paths_.Shown(position.file))));
        text += below ? ", \"uriBaseId\": \"SRCROOT\"}, " : "}, ";
        text += "\"region\": {\"startLine\": " + std::to_string(line);
        if (role == Role::Primary && !position.currLine.empty()) {
            text += ", \"snippet\": {";
            AppendMember(text, "text", position.currLine);
            text += '}';
        }
        text += '}';
        // Of line 1 the line before is none, and the three texts would not fit the numbers.
        if (role == Role::Primary && !position.currLine.empty() && line > 1) {
            text += ", \"contextRegion\": {\"startLine\": " + std::to_string(line - 1) +
                    ", \"endLine\": " + std::to_string(line + 1) + ", \"snippet\": {";
            AppendMember(text, "text", position.prevLine + "\n" + position.currLine + "\n" + position.nextLine);
            text += "}}";
        }
        text += "}}";
    }

    // The places behind the first, each with a number of its own; nothing for a finding with one place.
    void AppendRelated(std::string& text, const ReportMessage& message) const {
        if (message.positions.size() < 2) {
            return;
        }
        text += ", \"relatedLocations\": [";
        for (std::size_t at = 1; at < message.positions.size(); ++at) {
            text += at == 1 ? "{\"id\": " : ", {\"id\": ";
            // Readers want a number and a text for each; the report has no words of its own for them.
            text += std::to_string(at) + ", \"message\": {\"text\": \"further place\"}, ";
            std::string location;
            AppendLocation(location, message.positions[at], Role::Related);
            // Without its brace, as the id and the message are already in the object.
            text += std::string_view(location).substr(1);
        }
        text += ']';
    }

    // Only where suppressed findings reach this form at all.
    void AppendSuppressions(std::string& text, const ReportMessage& message) const {
        if (settings_.suppressed == nullptr) {
            return;
        }
        const SuppressBase& base = *settings_.suppressed;
        // By the hashing rules of the base and not by those of today, or an older base would match nothing.
        const bool isInBase = base.Contains(MakeSuppressEntry(message, base.Version()));
        // An empty array too: it says that the result is not suppressed, while none at all says that nobody looked.
        text += ", \"suppressions\": [";
        text += isInBase ? "{\"kind\": \"external\", \"status\": \"accepted\"}" : "";
        text += isInBase && message.falseAlarm ? ", " : "";
        text += message.falseAlarm ? "{\"kind\": \"inSource\"}" : "";
        text += ']';
    }

    // What has no member of its own in the format, or needs the taxonomy.
    static void AppendProperties(std::string& text, const ReportMessage& message) {
        if (message.cwe != 0) {
            text += ", \"taxa\": [{\"id\": \"" + std::to_string(message.cwe) +
                    "\", \"toolComponent\": {\"name\": \"CWE\", \"index\": 0}}]";
        }
        if (!message.sastId.empty()) {
            text += ", \"properties\": {";
            AppendMember(text, "standard", message.sastId);
            text += '}';
        }
    }

    // A rule's name is to be another one than its id.
    static std::string NameOf(const Rule& rule) {
        std::string name(GroupName(ClassifyCode(rule.code)));
        std::replace_if(
            name.begin(), name.end(), [](char character) { return character == ' ' || character == '-'; }, '_');
        return name + "_" + rule.id;
    }

    static void AppendRule(std::string& text, const Rule& rule) {
        text += '{';
        AppendMember(text, "id", rule.id);
        text += ", ";
        AppendMember(text, "name", NameOf(rule));
        text += ", \"defaultConfiguration\": {";
        AppendMember(text, "level", Levels[rule.worst]);
        text += '}';
        if (const std::string address = HelpAddress(rule.code); !address.empty()) {
            text += ", ";
            AppendMember(text, "helpUri", address);
            text += ", \"help\": {";
            AppendMember(text, "text", "See " + address);
            text += '}';
        }
        text += ", \"shortDescription\": {";
        AppendMember(text, "text", rule.id + " (" + std::string(GroupName(ClassifyCode(rule.code))) + ")");
        text += '}';
        std::string relations;
        std::string tags;
        for (const std::uint32_t weakness : rule.weaknesses) {
            // Twice for each weakness: as a relation into the taxonomy, and as the tag by which platforms filter.
            const std::string number = std::to_string(weakness);
            relations += relations.empty() ? "{\"target\": {\"id\": \"" : ", {\"target\": {\"id\": \"";
            relations += number;
            relations += "\", \"toolComponent\": {\"name\": \"CWE\", \"index\": 0}}, \"kinds\": [\"relevant\"]}";
            tags += tags.empty() ? "\"external/cwe/cwe-" : ", \"external/cwe/cwe-";
            tags += number;
            tags += '"';
        }
        if (!relations.empty()) {
            text += ", \"relationships\": [" + relations + "], \"properties\": {\"tags\": [" + tags + "]}";
        }
        text += '}';
    }

    // Only the weaknesses that results name, for which it says of itself that it is not comprehensive.
    void AppendTaxonomies(std::string& text) const {
        text += "\"taxonomies\": [{\"name\": \"CWE\", \"informationUri\": \"https://cwe.mitre.org/\", "
                "\"shortDescription\": {\"text\": \"Common Weakness Enumeration\"}, \"isComprehensive\": false, "
                "\"taxa\": [";
        bool isFirst = true;
        for (const std::uint32_t weakness : weaknesses_) {
            const std::string number = std::to_string(weakness);
            text += isFirst ? "" : ", ";
            isFirst = false;
            text += "{\"id\": \"";
            text += number;
            text += "\", \"helpUri\": \"https://cwe.mitre.org/data/definitions/";
            text += number;
            text += ".html\"}";
        }
        text += "]}],\n";
    }

    // Gathered until the tail: they belong to the invocation, which stands behind the results.
    void AppendFailure(const ReportMessage& message) {
        failures_ += failures_.empty() ? "\n{\"level\": \"error\", \"descriptor\": {"
                                       : ",\n{\"level\": \"error\", \"descriptor\": {";
        AppendMember(failures_, "id", message.code);
        failures_ += "}, \"message\": {";
        AppendMember(failures_, "text", message.message);
        failures_ += '}';
        if (HasFile(message)) {
            failures_ += ", \"locations\": [";
            AppendLocation(failures_, message.positions.front(), Role::Primary);
            failures_ += ']';
        }
        failures_ += '}';
    }

    // Told and not enforced: which platform the report is for, nobody has said.
    void TellLimits() const {
        if (!settings_.tell) {
            return;
        }
        const std::string count = "The SARIF report holds " + std::to_string(results_) + " results";
        if (results_ > MostResults) {
            settings_.tell(count + ": some platforms take no more than " + std::to_string(MostResults) + " of a run");
        } else if (results_ > MostShownResults) {
            settings_.tell(count + ": some platforms show only the " + std::to_string(MostShownResults) +
                           " worst of a run");
        }
        // An estimate that errs on the side of telling; packing the report to know would take longer than to write it.
        if (bytes_ / LeastPacking > MostPackedBytes) {
            settings_.tell("The SARIF report may take more than 10 MB when packed, which some platforms refuse");
        }
    }

    RenderSettings settings_;
    SourcePaths paths_;
    FindingNames names_;
    std::vector<Rule> rules_;
    std::map<std::string, std::size_t, std::less<>> indices_; // into the rules
    std::set<std::uint32_t> weaknesses_;
    std::string failures_; // notifications, one for each unit that could not be analyzed
    std::size_t results_ = 0;
    std::size_t bytes_ = 0;
};

} // namespace

std::unique_ptr<IOutput> MakeSarifOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<SarifOutput>(path, settings);
}

} // namespace OrvlogConverter
