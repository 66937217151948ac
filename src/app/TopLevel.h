#pragma once

// The only place where errors become texts and exit codes.
//
// Everything below throws, so that no function has to hand a code up that it does not understand. A subcommand runs
// inside the parser, as its callback: thus one list of handlers covers the command line and the work.
//
// Texts go to standard output, errors too, so that they stand in the order in which things happened.

#include <exception>
#include <functional>
#include <string>
#include <utility>

namespace args {
class ArgumentParser;
}

namespace Orvanta {

/// The user asks for a text and nothing else, such as a program's version; thrown by a flag's action, caught by
/// ParseAndRun only.
class PrintRequest : public std::exception {
public:
    /// `text` is printed as it is.
    explicit PrintRequest(std::string text) : text_(std::move(text)) {}

    /// The text to print.
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

/// Gives a parser the words that all our programs' help uses.
void SetHelpWords(args::ArgumentParser& parser);

/// Parses the command line, which runs the chosen subcommand where there are some, then does `work`, and turns every
/// way in which that can end into a message on standard output and an exit code. No exception leaves it.
int ParseAndRun(args::ArgumentParser& parser, int argumentCount, const char* const* arguments,
                const std::function<void()>& work = {});

/// For a command that writes to `outputPath`: "-" is standard output, which then belongs to what is written there, and
/// messages go to standard error.
void MakeRoomFor(const std::string& outputPath) noexcept;

/// What a program does from its first step to its exit code.
using EntryFunction = int(int argumentCount, const char* const* arguments);

/// Runs it. What is thrown before its own handlers are there, or behind them, as for want of memory, is told in the
/// same words and ends with code 1.
[[nodiscard]] int RunGuarded(EntryFunction* entry, int argumentCount, const char* const* arguments) noexcept;

} // namespace Orvanta
