#include "buildinput/ResponseFile.h"

#include "buildinput/CommandStringSplitter.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

// Files that name each other in a ring would be read for ever.
constexpr std::size_t DepthLimit = 2000;
// Some editors and build tools put it in front; it belongs to no word.
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// Counts the response files that this thread is expanding one inside another.
class DepthCounter {
public:
    /// \throws ZelmException at the limit; nothing is counted then
    explicit DepthCounter(const std::string& path) {
        if (depth_ >= DepthLimit) {
            throw ZelmException(
                FillPlaceholders("Recursion depth of the response files expansion exceeds the limit: %1%. Check the "
                                 "file \"%2%\".",
                                 {std::to_string(DepthLimit), path}));
        }
        ++depth_;
    }

    ~DepthCounter() { --depth_; }

    DepthCounter(const DepthCounter&) = delete;
    DepthCounter& operator=(const DepthCounter&) = delete;

private:
    static thread_local std::size_t depth_;
};

thread_local std::size_t DepthCounter::depth_ = 0;

/// Takes the token in quotes with which `text` begins off it.
std::string_view TakeQuotedToken(std::string_view& text, const std::string& path) {
    const std::size_t end = text.find(text.front(), 1);
    if (end == std::string_view::npos) {
        throw ZelmException(FillPlaceholders("Unmatched quote in response file \"%1%\": %2%", {path, text}));
    }
    const std::string_view token = text.substr(1, end - 1);
    text.remove_prefix(end + 1);
    return token;
}

/// Takes the token without quotes with which `text` begins off it.
std::string TakePlainToken(std::string_view& text) {
    std::string token;
    std::size_t position = 0;
    // A quote within such a token is a character like any other; a backslash protects the one behind it, blanks too.
    while (position < text.size() && !IsWhiteSpace(text[position])) {
        if (text[position] == '\\') {
            ++position;
        }
        if (position < text.size()) {
            token += text[position++];
        }
    }
    text.remove_prefix(position);
    return token;
}

/// Whether the argument is "@" and the name of a file that is there. A folder is none.
bool NamesResponseFile(std::string_view argument, const std::string& directory) {
    if (argument.size() < 2 || argument.front() != '@') {
        return false;
    }
    // Of every kind but folders: a shell's "<(...)" leads to a pipe.
    const PathKind kind = KindOf(JoinPath(directory, argument.substr(1)));
    return kind == PathKind::File || kind == PathKind::Other;
}

/// What the response files of one command have come to.
struct Totals {
    std::size_t words = 0;
    std::size_t bytes = 0;
};

/// Files that name each other many times can hold more than any memory, however flat they are.
void Count(Totals& totals, std::size_t words, std::size_t bytes, const std::string& path,
           const ResponseFileReading& reading) {
    totals.words += words;
    totals.bytes += bytes;
    if (totals.words > reading.mostWords || totals.bytes > reading.mostBytes) {
        throw ZelmException("The response files of one command hold more than " + std::to_string(reading.mostWords) +
                            " words or " + std::to_string(reading.mostBytes >> 20U) + " MB. Check the file \"" + path +
                            "\".");
    }
}

/// As GCC and clang do, quotes and backslashes working inside a word as well as around it.
std::vector<std::string> SplitGnu(std::string_view text) {
    std::vector<std::string> words;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
        if (text.empty()) {
            return words;
        }
        std::string word;
        char quote = '\0';
        std::size_t position = 0;
        for (; position < text.size() && (quote != '\0' || !IsWhiteSpace(text[position])); ++position) {
            const char character = text[position];
            // Before quotes are looked at: a protected quote opens and closes nothing.
            if (character == '\\' && position + 1 < text.size()) {
                word += text[++position];
            } else if (character == quote) {
                quote = '\0';
            } else if (quote == '\0' && (character == '"' || character == '\'')) {
                quote = character;
            } else {
                word += character;
            }
        }
        words.push_back(std::move(word));
        text.remove_prefix(position);
    }
}

/// Tells the first word in which the two readings differ; an empty one where a reading has no such word.
void TellDifference(const std::vector<std::string>& words, const std::vector<std::string>& native,
                    const std::string& path, const ResponseFileReading& reading) {
    const auto [own, other] = std::mismatch(words.begin(), words.end(), native.begin(), native.end());
    if (own != words.end() || other != native.end()) {
        reading.tellDifference(path, own != words.end() ? *own : std::string(),
                               other != native.end() ? *other : std::string());
    }
}

/// The words of one file by the rules that are asked for.
std::vector<std::string> WordsOf(std::string_view text, const std::string& path, const ResponseFileReading& reading) {
    if (!reading.compilers) {
        return SplitResponseFile(text, path);
    }
    if (reading.isNative) {
        return SplitAsCompiler(text, *reading.compilers);
    }
    std::vector<std::string> words = SplitResponseFile(text, path);
    if (reading.tellDifference) {
        TellDifference(words, SplitAsCompiler(text, *reading.compilers), path, reading);
    }
    return words;
}

std::vector<std::string> Expand(const std::string& path, const std::string& directory,
                                const ResponseFileReading& reading, Totals& totals);

/// Appends the argument, or what the response file that it names stands for.
void AppendExpanded(std::vector<std::string>& arguments, std::string argument, const std::string& directory,
                    const ResponseFileReading& reading, Totals& totals) {
    if (NamesResponseFile(argument, directory)) {
        std::vector<std::string> expansion = Expand(argument.substr(1), directory, reading, totals);
        arguments.insert(arguments.end(), std::make_move_iterator(expansion.begin()),
                         std::make_move_iterator(expansion.end()));
    } else {
        arguments.push_back(std::move(argument));
    }
}

std::vector<std::string> Expand(const std::string& path, const std::string& directory,
                                const ResponseFileReading& reading, Totals& totals) {
    const DepthCounter depth(path);
    const std::string text = ReadWholeFile(JoinPath(directory, path));
    // The bytes before they are split and the words before they are expanded, so that neither can fill the memory
    // first.
    Count(totals, 0, text.size(), path, reading);
    std::vector<std::string> words = WordsOf(text, path, reading);
    if (reading.tellFile) {
        reading.tellFile(JoinPath(directory, path), words);
    }
    Count(totals, words.size(), 0, path, reading);
    std::vector<std::string> arguments;
    for (std::string& word : words) {
        AppendExpanded(arguments, std::move(word), directory, reading, totals);
    }
    return arguments;
}

} // namespace

std::vector<std::string> SplitAsCompiler(std::string_view text, NativeQuoting quoting) {
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    if (quoting == NativeQuoting::Gnu) {
        return SplitGnu(text);
    }
    // The splitter takes the first word for a program and reads it by other rules.
    std::string line = "cl " + std::string(text);
    // A command line has no line ends, and so the splitter takes them for characters of a word.
    std::replace_if(line.begin(), line.end(), IsWhiteSpace, ' ');
    std::vector<std::string> words = SplitCommandString(line, CommandStringRules::Windows);
    words.erase(words.begin());
    return words;
}

std::vector<std::string> SplitResponseFile(std::string_view text, const std::string& path) {
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    std::vector<std::string> tokens;
    while (!text.empty()) {
        if (IsWhiteSpace(text.front())) {
            text.remove_prefix(1);
        } else if (text.front() == '"' || text.front() == '\'') {
            tokens.emplace_back(TakeQuotedToken(text, path));
        } else {
            tokens.push_back(TakePlainToken(text));
        }
    }
    return tokens;
}

std::vector<std::string> ExpandResponseFile(const std::string& path, const std::string& directory,
                                            const ResponseFileReading& reading) {
    Totals totals;
    return Expand(path, directory, reading, totals);
}

void ExpandResponseFiles(std::vector<std::string>& arguments, const std::string& directory,
                         const ResponseFileReading& reading) {
    const auto mayName = [](const std::string& argument) {
        return argument.starts_with('@');
    };
    // Without a look at the disk and without a copy for nearly all commands.
    if (std::none_of(arguments.begin(), arguments.end(), mayName)) {
        return;
    }
    Totals totals;
    // Into a vector of its own: when a file can't be read, the arguments are to be as they were.
    std::vector<std::string> expanded;
    expanded.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        AppendExpanded(expanded, argument, directory, reading, totals);
    }
    arguments = std::move(expanded);
}

} // namespace Orvanta
