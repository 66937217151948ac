#include "buildinput/OptionFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace Orvanta {

namespace {

// Files that include each other would be read for ever; no build nests them as deep as this.
constexpr unsigned DepthLimit = 100;
// Some editors put it in front; it belongs to no word.
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// Takes words off a text.
class OptionScanner {
public:
    OptionScanner(std::string_view text, const OptionFileSyntax& syntax, const std::string& path)
        : rest_(text), syntax_(syntax), path_(path) {}

    /// The next word; no value at the end of the text.
    std::optional<std::string> TakeWord() {
        // A comment may follow a comment, with or without blanks between them.
        while (SkipWhiteSpace() || SkipComment()) {
        }
        if (rest_.empty()) {
            return std::nullopt;
        }
        // Behind a word of the same line, ";" and "#" open no comment.
        isAtLineStart_ = false;
        std::string word;
        // Quotes may open in the middle of a word: -DNAME="a b" is one.
        while (!rest_.empty() && !IsWhiteSpace(rest_.front())) {
            if (IsQuote(rest_.front())) {
                AppendQuoted(word);
            } else {
                AppendCharacter(word, rest_.size() > 1 && rest_.front() == '\\' && IsQuote(rest_[1]));
            }
        }
        return word;
    }

private:
    [[nodiscard]] bool IsQuote(char character) const {
        return character == '"' || (syntax_.viaQuotes && character == '\'');
    }

    /// False when there is none. Notes whether a line has begun, which is where some comments may stand.
    bool SkipWhiteSpace() {
        const std::string_view before = rest_;
        while (!rest_.empty() && IsWhiteSpace(rest_.front())) {
            isAtLineStart_ = isAtLineStart_ || rest_.front() == '\n';
            rest_.remove_prefix(1);
        }
        return rest_.size() != before.size();
    }

    /// Takes one comment off; false when none begins here. One that nothing closes reaches to the end.
    bool SkipComment() {
        const bool isLine = (syntax_.lineComments && isAtLineStart_ && rest_.find_first_of(";#") == 0) ||
                            (syntax_.cComments && rest_.starts_with("//"));
        if (isLine) {
            rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
            return true;
        }
        if (syntax_.cComments && rest_.starts_with("/*")) {
            const std::size_t end = rest_.find("*/", 2);
            rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 2);
            return true;
        }
        return false;
    }

    /// Appends what stands between the quote here and its partner.
    /// \throws ZelmException when there is no partner
    void AppendQuoted(std::string& word) {
        // Kept for the message, which shows the place where the quote opens.
        const std::string_view from = rest_;
        const char quote = rest_.front();
        rest_.remove_prefix(1);
        while (!rest_.empty() && rest_.front() != quote) {
            const char next = rest_.size() > 1 ? rest_[1] : '\0';
            AppendCharacter(word, rest_.front() == '\\' && (IsQuote(next) || (syntax_.viaQuotes && next == '\\')));
        }
        if (rest_.empty()) {
            throw ZelmException("Unmatched quote in option file \"" + path_ + "\": " + std::string(from));
        }
        rest_.remove_prefix(1);
    }

    /// Takes one character, with the backslash before it when that only protects it.
    void AppendCharacter(std::string& word, bool isEscaped) {
        word += rest_[isEscaped ? 1 : 0];
        rest_.remove_prefix(isEscaped ? 2 : 1);
    }

    std::string_view rest_;
    const OptionFileSyntax& syntax_;
    const std::string& path_;
    bool isAtLineStart_ = true;
};

/// The option file that an argument names, and how many arguments name it.
struct OptionFileUse {
    std::string path;
    std::size_t arguments = 1;
};

/// What the argument is by one flag; no value when it is another flag, or names nothing.
std::optional<OptionFileUse> UseOf(const OptionFileFlag& flag, const std::vector<std::string>& arguments,
                                   std::size_t index) {
    using Value = OptionFileFlag::Value;
    const std::string_view argument = arguments[index];
    if (!argument.starts_with(flag.flag)) {
        return std::nullopt;
    }
    std::string_view rest = argument.substr(flag.flag.size());
    if (rest.empty()) {
        const bool hasNext = flag.value != Value::Glued && index + 1 < arguments.size();
        return hasNext ? std::optional(OptionFileUse{arguments[index + 1], 2}) : std::nullopt;
    }
    // "--via_other" begins like "--via", and is another flag.
    if (flag.value == Value::EqualsOrNext && rest.front() == '=') {
        rest.remove_prefix(1);
    } else if (flag.value == Value::Next || flag.value == Value::EqualsOrNext) {
        return std::nullopt;
    }
    return rest.empty() ? std::nullopt : std::optional(OptionFileUse{std::string(rest)});
}

std::optional<OptionFileUse> UseAt(const OptionFileSyntax& syntax, const std::vector<std::string>& arguments,
                                   std::size_t index) {
    for (const OptionFileFlag& flag : syntax.flags) {
        if (std::optional<OptionFileUse> use = UseOf(flag, arguments, index)) {
            return use;
        }
    }
    return std::nullopt;
}

/// The arguments with every option file in the place of the flag that names it. `depth` counts the files that are open.
std::vector<std::string> Expanded(const std::vector<std::string>& arguments, const OptionFileSyntax& syntax,
                                  const std::string& directory, unsigned depth) {
    std::vector<std::string> expanded;
    expanded.reserve(arguments.size());
    for (std::size_t index = 0; index < arguments.size();) {
        const std::optional<OptionFileUse> use = UseAt(syntax, arguments, index);
        if (!use) {
            expanded.push_back(arguments[index++]);
            continue;
        }
        if (depth == DepthLimit) {
            throw ZelmException("The option file \"" + use->path + "\" lies more than " + std::to_string(DepthLimit) +
                                " option files deep");
        }
        const std::string text = ReadWholeFile(JoinPath(directory, use->path));
        std::vector<std::string> words =
            Expanded(SplitOptionFile(text, syntax, use->path), syntax, directory, depth + 1);
        std::move(words.begin(), words.end(), std::back_inserter(expanded));
        index += use->arguments;
    }
    return expanded;
}

} // namespace

std::vector<std::string> SplitOptionFile(std::string_view text, const OptionFileSyntax& syntax,
                                         const std::string& path) {
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    OptionScanner scanner(text, syntax, path);
    std::vector<std::string> words;
    while (std::optional<std::string> word = scanner.TakeWord()) {
        words.push_back(*std::move(word));
    }
    return words;
}

void ExpandOptionFiles(std::vector<std::string>& arguments, const OptionFileSyntax& syntax,
                       const std::string& directory) {
    // Most commands have none and are left as they are, without a copy.
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        if (UseAt(syntax, arguments, index)) {
            arguments = Expanded(arguments, syntax, directory, 0);
            return;
        }
    }
}

} // namespace Orvanta
