#include "buildinput/ShellLine.h"

#include "platform/Paths.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Orvanta {

namespace {

/// The length is looked at first: this is asked of every word of a build.
bool JoinsCommands(std::string_view word) {
    return word.size() <= 2 && (word == "&&" || word == "||" || word == ";" || word == "|");
}

// The number of words that a redirection takes; 0 when the word is none.
std::size_t RedirectionLength(std::string_view word) {
    // What is redirected may stand before the sign: "2>err.txt", "&>all.txt".
    const std::size_t operation = word.find_first_not_of("0123456789&");
    if (operation == std::string_view::npos || (word[operation] != '>' && word[operation] != '<')) {
        return 0;
    }
    // With nothing behind the sign, the file is the next word.
    return word.find_first_not_of("<>", operation) == std::string_view::npos ? 2 : 1;
}

std::vector<std::string> WithoutRedirections(std::span<const std::string> words) {
    std::vector<std::string> kept;
    for (std::size_t index = 0; index < words.size();) {
        const std::size_t length = RedirectionLength(words[index]);
        if (length == 0) {
            kept.push_back(words[index]);
        }
        index += std::max<std::size_t>(length, 1);
    }
    return kept;
}

} // namespace

bool IsShellLine(std::span<const std::string> words) noexcept {
    return !words.empty() &&
           (words[0] == ":" || words[0] == "cd" || std::any_of(words.begin(), words.end(), JoinsCommands));
}

std::vector<ShellCommand> SplitShellLine(std::span<const std::string> words) {
    std::vector<ShellCommand> commands;
    std::string directory;
    // The directory holds for all commands behind a "cd", whatever joins them: what a build lists is taken for a line
    // that succeeds.
    while (!words.empty()) {
        const auto end = std::find_if(words.begin(), words.end(), JoinsCommands);
        const auto length = static_cast<std::size_t>(end - words.begin());
        std::vector<std::string> command = WithoutRedirections(words.first(length));
        words = words.subspan(std::min(length + 1, words.size()));
        if (command.empty() || command[0] == ":") {
            continue;
        }
        // The last word: options of "cd" may stand before it.
        if (command[0] == "cd" && command.size() > 1) {
            directory = directory.empty() ? command.back() : JoinPath(directory, command.back());
        } else {
            commands.push_back({std::move(command), directory});
        }
    }
    return commands;
}

} // namespace Orvanta
