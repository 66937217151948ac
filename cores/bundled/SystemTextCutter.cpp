#include "bundled/SystemTextCutter.h"

#include "bundled/CodeScanner.h"
#include "bundled/FileAlias.h"
#include "platform/Text.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <utility>

namespace Orvanta {

namespace {

/// Puts lines of a unit's files below each other, with markers where they don't follow from one another.
class CutTextWriter {
public:
    void Add(const MarkedLine& line, const std::string& path) {
        const std::string_view code = Trim(line.text);
        const bool isInRawString = scanner_.IsInRawString();
        // An empty line needs no room: the next one is set to its own number.
        if (code.empty() && !isInRawString) {
            return;
        }
        // Of directives, preprocessed text holds only such as "#pragma".
        const bool isDirective = !isInRawString && code.starts_with('#');
        switch (StepTo(line, isDirective)) {
        case Step::Nowhere:
            return;
        case Step::Join:
            text_ += ' ';
            Append(line, code);
            break;
        case Step::Below:
            text_.append(line.number - number_, '\n');
            Begin(line);
            break;
        case Step::Jump:
            text_ += (text_.empty() ? "# " : "\n# ") + std::to_string(line.number) + " \"" + AliasOf(path) + "\"\n";
            Begin(line);
            break;
        }
        isDirective_ = isDirective;
    }

    [[nodiscard]] CutText Finish(std::vector<MarkedFile> files) {
        if (!text_.empty()) {
            text_ += '\n';
        }
        // The order in which they are looked up; text of one file may come back after that of another.
        std::sort(systemMacros_.begin(), systemMacros_.end(), [](const auto& left, const auto& right) {
            return std::tie(left.file, left.line) < std::tie(right.file, right.line);
        });
        return {std::move(text_), std::move(files), std::move(systemMacros_)};
    }

private:
    enum class Step {
        Nowhere, ///< the line is left out
        Join,    ///< it belongs to the line that stands there
        Below,
        Jump,
    };

    // How to get from the end of the text to the line.
    [[nodiscard]] Step StepTo(const MarkedLine& line, bool isDirective) const {
        // Also while a parenthesis is open: a place in the wrong file would be worse.
        if (file_ != line.file) {
            return Step::Jump;
        }
        const bool isOpen = scanner_.OpenParentheses() > 0;
        if (isOpen && isDirective) {
            return Step::Nowhere; // a pragma that some macro has written: nothing to Cppcheck
        }
        if (line.number > number_) {
            return isOpen || line.number - number_ <= LongestGap ? Step::Below : Step::Jump;
        }
        const bool canJoin = !isDirective && !isDirective_ && (isOpen || line.number == number_);
        return canJoin ? Step::Join : Step::Jump;
    }

    // Below what stands there. Not trimmed, so that columns stay those of the preprocessed text.
    void Begin(const MarkedLine& line) {
        file_ = line.file;
        number_ = line.number;
        lineBegin_ = text_.size();
        Append(line, line.text);
    }

    // To the line that stands last, of which it notes the piece when a system macro wrote it.
    void Append(const MarkedLine& line, std::string_view code) {
        const std::uint32_t begin = Column();
        text_ += code;
        scanner_.Read(code);
        // By columns: in one line, a user's own code may stand beside what a macro has written.
        if (line.origin == TextOrigin::SystemMacro) {
            systemMacros_.push_back({*file_, number_, begin, Column()});
        }
    }

    [[nodiscard]] std::uint32_t Column() const { return static_cast<std::uint32_t>(text_.size() - lineBegin_ + 1); }

    static constexpr std::uint32_t LongestGap = 8; // of empty lines that take no more room than a marker

    std::string text_; // its last line is not ended
    std::vector<SystemMacroText> systemMacros_;
    CodeScanner scanner_;
    std::optional<std::size_t> file_; // of the last line, as all that follows
    std::uint32_t number_ = 0;
    std::size_t lineBegin_ = 0;
    bool isDirective_ = false;
};

} // namespace

CutText CutSystemText(std::string_view text, const std::string& sourcePath, const std::string& currentDirectory) {
    CutTextWriter writer;
    MarkedText marked(text, sourcePath, currentDirectory);
    for (MarkedLine line; marked.ReadLine(line);) {
        if (line.file && !marked.Files()[*line.file].isSystem) {
            writer.Add(line, marked.Files()[*line.file].path);
        }
    }
    // All files, not only those with text: what is left names them by their places in this list.
    return writer.Finish(marked.Files());
}

} // namespace Orvanta
