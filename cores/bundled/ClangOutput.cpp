#include "bundled/ClangOutput.h"

#include "platform/Text.h"

#include <optional>
#include <utility>

namespace Orvanta {

namespace {

// How clang-tidy calls what can't be compiled.
constexpr std::string_view ErrorCheck = "clang-diagnostic-error";

// One about the command.
constexpr std::string_view ErrorWithoutPlace = "error: ";

/// A line such as "PATH:12:3: warning: text [check,check]".
struct Heading {
    ClangNote note;
    std::string_view kind;
};

std::optional<Heading> ReadHeading(std::string_view line, const std::string& textPath) {
    if (!line.starts_with(textPath) || !line.substr(textPath.size()).starts_with(':')) {
        return std::nullopt;
    }
    line.remove_prefix(textPath.size() + 1);
    Heading heading;
    if (ReadWholeNumber(TakeUpTo(line, ":"), heading.note.line) != std::errc() ||
        ReadWholeNumber(TakeUpTo(line, ":"), heading.note.column) != std::errc()) {
        return std::nullopt;
    }
    heading.kind = Trim(TakeUpTo(line, ":"));
    heading.note.message = Trim(line);
    return heading;
}

// The names in the brackets at the end of a message, which are taken off it.
std::vector<std::string> TakeChecks(std::string& message) {
    std::vector<std::string> checks;
    const std::size_t open = message.rfind(" [");
    if (open == std::string::npos || !message.ends_with(']')) {
        return checks;
    }
    std::string_view names = std::string_view(message).substr(open + 2);
    names.remove_suffix(1);
    while (!names.empty()) {
        // Where warnings are errors, this stands among the names.
        if (const std::string_view name = TakeUpTo(names, ","); name != "-warnings-as-errors") {
            checks.emplace_back(name);
        }
    }
    message.resize(open);
    return checks;
}

void AddHeading(ClangOutput& output, Heading heading) {
    if (heading.kind == "note") {
        if (!output.diagnostics.empty()) {
            output.diagnostics.back().steps.push_back(std::move(heading.note));
        }
        return;
    }
    std::vector<std::string> checks = TakeChecks(heading.note.message);
    if (checks.empty()) {
        return;
    }
    if (checks.front() == ErrorCheck) {
        if (output.error.empty()) {
            output.error = heading.note.message;
        }
        return;
    }
    output.diagnostics.push_back({std::move(heading.note), std::move(checks), {}});
}

} // namespace

ClangOutput ReadClangOutput(std::string_view output, const std::string& textPath) {
    ClangOutput result;
    while (!output.empty()) {
        const std::string_view line = TakeLine(output);
        if (auto heading = ReadHeading(line, textPath)) {
            AddHeading(result, std::move(*heading));
        } else if (line.starts_with(ErrorWithoutPlace)) {
            AddHeading(result, {{0, 0, std::string(line.substr(ErrorWithoutPlace.size()))}, "error"});
        }
    }
    return result;
}

} // namespace Orvanta
