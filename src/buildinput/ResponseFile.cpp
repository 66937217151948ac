#include "buildinput/ResponseFile.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace Orvanta {

namespace {

constexpr std::size_t DepthLimit = 2000;
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// Counts the response files that this thread is expanding one inside another.
class DepthCounter {
public:
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
    const PathKind kind = KindOf(JoinPath(directory, argument.substr(1)));
    return kind == PathKind::File || kind == PathKind::Other;
}

/// Appends the argument, or what the response file that it names stands for.
void AppendExpanded(std::vector<std::string>& arguments, std::string argument, const std::string& directory) {
    if (NamesResponseFile(argument, directory)) {
        std::vector<std::string> expansion = ExpandResponseFile(argument.substr(1), directory);
        arguments.insert(arguments.end(), std::make_move_iterator(expansion.begin()),
                         std::make_move_iterator(expansion.end()));
    } else {
        arguments.push_back(std::move(argument));
    }
}

} // namespace

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

std::vector<std::string> ExpandResponseFile(const std::string& path, const std::string& directory) {
    const DepthCounter depth(path);
    std::vector<std::string> arguments;
    for (std::string& token : SplitResponseFile(ReadWholeFile(JoinPath(directory, path)), path)) {
        AppendExpanded(arguments, std::move(token), directory);
    }
    return arguments;
}

void ExpandResponseFiles(std::vector<std::string>& arguments, const std::string& directory) {
    const auto mayName = [](const std::string& argument) {
        return argument.starts_with('@');
    };
    if (std::none_of(arguments.begin(), arguments.end(), mayName)) {
        return;
    }
    std::vector<std::string> expanded;
    expanded.reserve(arguments.size());
    for (const std::string& argument : arguments) {
        AppendExpanded(expanded, argument, directory);
    }
    arguments = std::move(expanded);
}

} // namespace Orvanta
