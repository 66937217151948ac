#include "analysis/StartableCommand.h"

#include "compilers/ResponseFileText.h"

#include <span>
#include <utility>

namespace Orvanta {

StartableCommand::StartableCommand(Arguments words, const ParsedCommand& parsed, const std::string& responsePath)
    : words_(std::move(words)) {
    const std::size_t fixedWords = parsed.invocationPrefix.size() + 1; // up to the compiler
    if (!IsTooLongToStart(words_) || words_.size() <= fixedWords) {
        return;
    }
    const auto text = ResponseFileText(parsed.compilerType, std::span(words_).subspan(fixedWords));
    if (!text) {
        return; // the start will tell
    }
    // Taken in charge before it is written: half a file is removed as well.
    responseFile_.emplace(responsePath);
    OutputFile(responsePath, OutputFile::Mode::Replace).Append(*text);
    words_.resize(fixedWords);
    for (std::string& word : ResponseFileArguments(parsed.compilerType, responsePath)) {
        words_.push_back(std::move(word));
    }
}

} // namespace Orvanta
