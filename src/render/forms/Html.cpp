// A page that holds all it needs. Rows of the table are written as they come; what they share (rules, files, the source
// lines around findings) is gathered and stands behind them.

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"
#include "render/forms/html/HtmlPage.h"
#include "report/AnalyzerType.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace OrvlogConverter {

namespace {

// What the page shows above and below a finding.
constexpr std::uint32_t LinesAround = 5;
// Beyond this size a file is generated or no source, and reading it would cost more than its lines tell. In bytes.
constexpr std::uint64_t LargestSource = 16U << 20U;
// Of a source line, in bytes. A longer one is generated text that nobody reads in a page.
constexpr std::size_t LongestLine = 400;

// Every text goes through this form: the page is opened in a browser, and reports hold text of strangers.
void AppendString(std::string& text, std::string_view value) {
    text += '"';
    AppendEscaped(text, value, TextForm::JsonInPage);
    text += '"';
}

void AppendStrings(std::string& text, std::initializer_list<std::string_view> values) {
    for (const std::string_view value : values) {
        text += ',';
        AppendString(text, value);
    }
}

/// A file that findings lie in.
struct PageFile {
    std::string shown;
    std::string path;                      // empty: the source is not there to be read
    std::vector<std::uint32_t> lines = {}; // where findings are
};

// Appends the lines around findings as runs: [number of the first line, its text, the next one's, ...].
void AppendSource(std::string& text, const PageFile& file) {
    std::vector<std::uint32_t> places = file.lines;
    // Sorted, so that one pass through the file meets them in order; a list may hold a line twice.
    std::sort(places.begin(), places.end());
    const std::string source = Orvanta::ReadWholeFile(file.path);
    std::string_view rest = source;
    auto place = places.begin();
    bool isInRun = false;
    bool isFirstRun = true;
    for (std::uint32_t number = 1; !rest.empty() && place != places.end(); ++number) {
        const std::string_view line = Orvanta::TakeLine(rest);
        // Leaves behind the findings whose surroundings end above this line.
        while (place != places.end() && *place + LinesAround < number) {
            ++place;
        }
        if (place == places.end() || number + LinesAround < *place) {
            text += isInRun ? "]" : "";
            isInRun = false;
            continue;
        }
        if (!isInRun) {
            text += (isFirstRun ? "[" : ",[") + std::to_string(number);
            isInRun = true;
            isFirstRun = false;
        }
        AppendStrings(text, {line.substr(0, LongestLine)});
    }
    text += isInRun ? "]" : "";
}

class HtmlOutput : public FormOutput {
public:
    HtmlOutput(const std::string& path, RenderSettings settings)
        : FormOutput(path), settings_(std::move(settings)), paths_(settings_.sourceRoot) {}

protected:
    void AppendHead(std::string& text) override {
        text += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                // The page may load nothing and send nothing, whatever the texts of a report bring into it.
                "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                "'unsafe-inline'; script-src 'unsafe-inline'\">\n<title>Findings</title>\n<style>\n";
        text += HtmlStyle;
        text += "</style>\n</head>\n<body>\n";
        text += HtmlBody;
        // As data and not as a script: a browser parses JSON much faster than the same text as a program.
        text += "<script type=\"application/json\" id=\"rows\">[";
    }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        const Finding finding = FindingOf(message);
        // Rules and files by number: their names are long and stand in thousands of rows.
        const std::size_t file = FileNumber(finding.file, finding.line);
        text += count_++ == 0 ? "\n[" : ",\n[";
        text += std::to_string(LevelRank(message.level)) + ',' + std::to_string(RuleNumber(finding, message)) + ',' +
                std::to_string(file) + ',' + std::to_string(finding.line);
        AppendStrings(text, {finding.text});
        text += ',' + std::to_string(message.cwe);
        AppendStrings(text, {message.sastId});
        text += ",[";
        for (std::size_t at = 1; at < message.positions.size(); ++at) {
            const MessagePosition& position = message.positions[at];
            text += at == 1 ? "[" : ",[";
            text +=
                std::to_string(FileNumber(position.file, position.line)) + ',' + std::to_string(position.line) + ']';
        }
        text += ']';
        const MessagePosition& first = FirstPosition(message);
        // Where the source can't be read, the page shows the three lines that the report itself holds.
        if (files_[file].path.empty() && !first.currLine.empty()) {
            text += ",[";
            AppendString(text, first.prevLine);
            AppendStrings(text, {first.currLine, first.nextLine});
            text += ']';
        }
        text += ']';
    }

    void AppendTail(std::string& text) override {
        text += "\n]</script>\n<script type=\"application/json\" id=\"shared\">{\"about\":";
        AppendString(text, About());
        text += ",\n\"rules\":[" + rules_ + "],\n\"files\":[";
        for (const PageFile& file : files_) {
            text += &file == files_.data() ? "" : ",";
            AppendString(text, file.shown);
        }
        text += "],\n\"sources\":{";
        bool isFirst = true;
        for (std::size_t number = 0; number < files_.size(); ++number) {
            if (!files_[number].path.empty()) {
                text += (isFirst ? "\n\"" : ",\n\"") + std::to_string(number) + "\":[";
                isFirst = false;
                AppendSourceIfReadable(text, files_[number]);
                text += ']';
            }
        }
        text += "}}</script>\n<script>\n";
        text += HtmlScript;
        text += "</script>\n</body>\n</html>\n";
    }

private:
    // Asked for in the tail only: what is gone is not known before all reports were read.
    [[nodiscard]] std::string About() const {
        std::string about = "Orvanta " + settings_.programVersion;
        if (!settings_.comparedWith.empty()) {
            about += ", new since " + settings_.comparedWith;
            about += settings_.countGone ? "; gone since then: " + std::to_string(settings_.countGone()) : "";
        }
        return about;
    }

    // The file's number on the page, old or new. Notes the line too, when the source is there to be shown.
    std::size_t FileNumber(std::string_view file, std::uint32_t line) {
        // The disk is asked once for each file, not for each finding.
        const auto [row, isNew] = fileNumbers_.emplace(file, files_.size());
        if (isNew) {
            files_.push_back({paths_.Shown(file), PathOfSource(file)});
        }
        PageFile& known = files_[row->second];
        if (!known.path.empty()) {
            known.lines.push_back(line);
        }
        return row->second;
    }

    // Where the source can be read now; empty when nowhere, or when it is too large.
    [[nodiscard]] std::string PathOfSource(std::string_view file) const {
        const std::string root = settings_.sourceRoot.empty() ? "." : settings_.sourceRoot;
        // As it stands first, which finds sources of this machine; then below the root, for a report of another one.
        for (const std::string& path :
             {std::string(file), Orvanta::JoinPath(root, paths_.BelowRoot(file).value_or(std::string(file)))}) {
            if (Orvanta::IsRegularFile(path) && Orvanta::FileSize(path).value_or(0) <= LargestSource) {
                return path;
            }
        }
        return "";
    }

    // The rule's number on the page, old or new. What the page tells of a rule comes from the first finding of it.
    std::size_t RuleNumber(const Finding& finding, const ReportMessage& message) {
        const auto [row, isNew] = ruleNumbers_.emplace(finding.rule, ruleNumbers_.size());
        if (isNew) {
            rules_ += rules_.empty() ? "\n{\"id\":" : ",\n{\"id\":";
            AppendString(rules_, finding.rule);
            rules_ += ",\"group\":";
            AppendString(rules_, GroupName(ClassifyCode(message.code)));
            rules_ += ",\"help\":";
            AppendString(rules_, HelpAddress(message.code));
            rules_ += '}';
        }
        return row->second;
    }

    // A source that went away since it was first seen is no fault of the report.
    static void AppendSourceIfReadable(std::string& text, const PageFile& file) {
        // What was appended before the fault goes, so that the array around it stays whole.
        const std::size_t size = text.size();
        try {
            AppendSource(text, file);
        } catch (const Orvanta::ZelmException&) {
            text.resize(size);
        }
    }

    RenderSettings settings_;
    SourcePaths paths_;
    std::vector<PageFile> files_;
    std::map<std::string, std::size_t, std::less<>> fileNumbers_; // by the path of the report
    std::map<std::string, std::size_t, std::less<>> ruleNumbers_;
    std::string rules_; // as JSON
    std::size_t count_ = 0;
};

} // namespace

std::unique_ptr<IOutput> MakeHtmlOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<HtmlOutput>(path, settings);
}

} // namespace OrvlogConverter
