#include "render/Escapes.h"
#include "render/Finding.h"
#include "render/FormOutput.h"
#include "render/Forms.h"
#include "render/SourcePaths.h"

#include <utility>

namespace OrvlogConverter {

namespace {

// A suite says in front how many tests it has, so it is held until it is whole.
constexpr std::size_t LargestSuite = 1000;

void AppendAttribute(std::string& text, std::string_view name, std::string_view value) {
    text += ' ';
    text += name;
    text += "=\"";
    AppendEscaped(text, value, TextForm::Markup);
    text += '"';
}

/// A suite for each file; a file whose findings are many, or not together, has several.
class JunitOutput : public FormOutput {
public:
    JunitOutput(const std::string& path, const RenderSettings& settings)
        : FormOutput(path), paths_(settings.sourceRoot) {}

protected:
    void AppendHead(std::string& text) override {
        text += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"orvanta-analyzer\">\n";
    }

    void AppendFinding(std::string& text, const ReportMessage& message) override {
        const Finding finding = FindingOf(message);
        std::string file = HasFile(message) ? paths_.Shown(finding.file) : std::string(finding.file);
        if (file != suite_ || failures_ == LargestSuite) {
            AppendSuite(text);
            suite_ = std::move(file);
        }
        ++failures_;
        ++all_;
        const std::string line = std::to_string(finding.line);
        tests_ += "<testcase";
        AppendAttribute(tests_, "classname", suite_);
        AppendAttribute(tests_, "name", std::string(finding.rule) + " at line " + line);
        AppendAttribute(tests_, "file", suite_);
        AppendAttribute(tests_, "line", line);
        tests_ += "><failure";
        AppendAttribute(tests_, "type", LevelWord(message.level));
        AppendAttribute(tests_, "message", finding.text);
        tests_ += '>';
        AppendEscaped(tests_, suite_, TextForm::Markup);
        tests_ += ":" + line + ": ";
        AppendEscaped(tests_, FirstPosition(message).currLine, TextForm::Markup);
        tests_ += "</failure></testcase>\n";
    }

    void AppendTail(std::string& text) override {
        AppendSuite(text);
        if (all_ == 0) { // servers take a report without tests for a failure of the step that wrote it
            text += "<testsuite name=\"orvanta-analyzer\" tests=\"1\" failures=\"0\" errors=\"0\">\n"
                    "<testcase classname=\"orvanta-analyzer\" name=\"no findings\"/>\n</testsuite>\n";
        }
        text += "</testsuites>\n";
    }

private:
    void AppendSuite(std::string& text) {
        if (failures_ == 0) {
            return;
        }
        const std::string count = std::to_string(std::exchange(failures_, 0));
        text += "<testsuite";
        AppendAttribute(text, "name", suite_);
        AppendAttribute(text, "tests", count);
        AppendAttribute(text, "failures", count);
        text += " errors=\"0\">\n" + tests_ + "</testsuite>\n";
        tests_.clear();
    }

    SourcePaths paths_;
    std::string suite_; // the file that the open suite is about
    std::string tests_; // of the open suite
    std::size_t failures_ = 0;
    std::size_t all_ = 0;
};

} // namespace

std::unique_ptr<IOutput> MakeJunitOutput(const std::string& path, const RenderSettings& settings) {
    return std::make_unique<JunitOutput>(path, settings);
}

} // namespace OrvlogConverter
