#include "buildinput/CommandStringSplitter.h"

#include "platform/Paths.h"

#include <algorithm>
#include <array>

namespace Orvanta {

namespace {

/// Writes arguments one after another into a vector and keeps the memory of the strings that it held.
class ArgumentWriter {
public:
    explicit ArgumentWriter(std::vector<std::string>& arguments) : arguments_(arguments) {}

    /// Opens the next argument, which is empty at first.
    std::string& Next() {
        if (count_ == arguments_.size()) {
            arguments_.emplace_back();
        }
        std::string& argument = arguments_[count_++];
        argument.clear();
        return argument;
    }

    /// Drops what the vector held beyond the arguments written.
    void Finish() { arguments_.resize(count_); }

private:
    std::vector<std::string>& arguments_;
    std::size_t count_ = 0;
};

/// Characters to look for, as a table: builds have many megabytes of commands.
class CharacterSet {
public:
    constexpr explicit CharacterSet(std::string_view characters) {
        for (const char character : characters) {
            has_[static_cast<unsigned char>(character)] = true;
        }
    }

    [[nodiscard]] bool Has(char character) const { return has_[static_cast<unsigned char>(character)]; }

    /// Whether `text` begins with one of them.
    [[nodiscard]] bool Begins(std::string_view text) const { return !text.empty() && Has(text.front()); }

private:
    std::array<bool, 256> has_{};
};

/// Takes the characters before the first of `set`, or all that are left, off `text`.
std::string_view TakeUpTo(std::string_view& text, const CharacterSet& set) {
    std::size_t size = 0;
    while (size < text.size() && !set.Has(text[size])) {
        ++size;
    }
    const std::string_view taken = text.substr(0, size);
    text.remove_prefix(size);
    return taken;
}

char TakeCharacter(std::string_view& text) {
    const char character = text.front();
    text.remove_prefix(1);
    return character;
}

// What the POSIX shell makes of a command.

constexpr CharacterSet PosixBlanks(" \t\n");
constexpr CharacterSet EndsPosixStretch(" \t\n\\\"'");
constexpr CharacterSet EndsDoubleQuotedStretch("\"\\");
// Before any other character a backslash within double quotes stands for itself.
constexpr CharacterSet ProtectedInDoubleQuotes("$`\"\\\n");
constexpr CharacterSet SingleQuote("'");

/// Takes the character that a backslash protects. A protected line end joins two lines and is no part of the argument.
void TakeProtected(std::string_view& text, std::string& argument) {
    if (const char character = TakeCharacter(text); character != '\n') {
        argument += character;
    }
}

/// Takes a stretch in double quotes, the opening one included. False when the closing one is missing.
bool TakeDoubleQuoted(std::string_view& text, std::string& argument) {
    text.remove_prefix(1);
    for (;;) {
        argument += TakeUpTo(text, EndsDoubleQuotedStretch);
        if (text.empty()) {
            return false;
        }
        if (TakeCharacter(text) == '"') {
            return true;
        }
        if (ProtectedInDoubleQuotes.Begins(text)) {
            TakeProtected(text, argument);
        } else {
            argument += '\\';
        }
    }
}

/// Takes a stretch in single quotes, the opening one included. False when the closing one is missing.
bool TakeSingleQuoted(std::string_view& text, std::string& argument) {
    text.remove_prefix(1);
    argument += TakeUpTo(text, SingleQuote);
    if (text.empty()) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/// Takes the argument with which `text` begins. False when a quote is not closed.
bool TakePosixArgument(std::string_view& text, std::string& argument) {
    for (;;) {
        argument += TakeUpTo(text, EndsPosixStretch);
        if (text.empty() || PosixBlanks.Begins(text)) {
            return true;
        }
        if (text == "\\") {
            argument += TakeCharacter(text); // nothing follows that it could protect
        } else if (text.front() == '\\') {
            text.remove_prefix(1);
            TakeProtected(text, argument);
        } else if (!(text.front() == '"' ? TakeDoubleQuoted(text, argument) : TakeSingleQuoted(text, argument))) {
            return false;
        }
    }
}

/// Takes blanks and joined lines off `text`.
void SkipPosixBlanks(std::string_view& text) {
    for (;;) {
        if (text.starts_with("\\\n")) {
            text.remove_prefix(2);
        } else if (PosixBlanks.Begins(text)) {
            text.remove_prefix(1);
        } else {
            return;
        }
    }
}

/// Leaves `arguments` empty when the text can't be split.
void SplitByPosixRules(std::string_view text, std::vector<std::string>& arguments) {
    ArgumentWriter writer(arguments);
    SkipPosixBlanks(text);
    while (!text.empty()) {
        // A shell would ask for more: there is no telling where the command was meant to end.
        if (!TakePosixArgument(text, writer.Next())) {
            arguments.clear();
            return;
        }
        SkipPosixBlanks(text);
    }
    writer.Finish();
}

// What CommandLineToArgvW makes of a command.

constexpr CharacterSet WindowsBlanks(" \t");
constexpr CharacterSet DoubleQuote("\"");
constexpr CharacterSet EndsWindowsStretch(" \t\\\"");
constexpr CharacterSet EndsQuotedWindowsStretch("\\\"");

void SkipWindowsBlanks(std::string_view& text) {
    while (WindowsBlanks.Begins(text)) {
        text.remove_prefix(1);
    }
}

/// Takes the program's name: it knows no backslash, and ends at the next quote when it begins with one, else at the
/// next blank. A command that begins with a blank has an empty name.
std::string_view TakeWindowsProgram(std::string_view& text) {
    if (text.front() != '"') {
        return TakeUpTo(text, WindowsBlanks);
    }
    text.remove_prefix(1);
    const std::string_view program = TakeUpTo(text, DoubleQuote);
    text.remove_prefix(std::min<std::size_t>(1, text.size()));
    return program;
}

/// Takes a run of backslashes. Before a quote each pair gives one, and an odd one makes the quote an ordinary
/// character: true when it did, with that quote taken too.
bool TakeBackslashes(std::string_view& text, std::string& argument) {
    const std::size_t count = std::min(text.find_first_not_of('\\'), text.size());
    text.remove_prefix(count);
    if (text.empty() || text.front() != '"') {
        argument.append(count, '\\');
        return false;
    }
    argument.append(count / 2, '\\');
    if (count % 2 == 0) {
        return false;
    }
    argument += TakeCharacter(text);
    return true;
}

/// Takes the quotes that stand together here. `open` says whether a quoted stretch is open, before and after. The
/// opening quote counts too: every third quote is an ordinary character, and leaves no stretch open.
void TakeQuotes(std::string_view& text, bool& open, std::string& argument) {
    std::size_t count = open ? 1 : 0;
    while (!text.empty() && text.front() == '"') {
        text.remove_prefix(1);
        if (++count == 3) {
            argument += '"';
            count = 0;
        }
    }
    open = count == 1;
}

/// Takes the argument with which `text` begins, up to a blank outside quotes or to the end.
void TakeWindowsArgument(std::string_view& text, std::string& argument) {
    bool open = false;
    for (;;) {
        argument += TakeUpTo(text, open ? EndsQuotedWindowsStretch : EndsWindowsStretch);
        if (text.empty()) {
            return;
        }
        if (text.front() == '"') {
            TakeQuotes(text, open, argument);
        } else if (text.front() != '\\') {
            return;
        } else if (TakeBackslashes(text, argument)) {
            TakeQuotes(text, open, argument);
        }
    }
}

/// Never fails: a quote that nothing closes reaches to the end.
void SplitByWindowsRules(std::string_view text, std::vector<std::string>& arguments) {
    ArgumentWriter writer(arguments);
    if (!text.empty()) {
        // Whatever the text begins with, the program is an argument of its own, be it empty.
        writer.Next() = TakeWindowsProgram(text);
        SkipWindowsBlanks(text);
    }
    while (!text.empty()) {
        TakeWindowsArgument(text, writer.Next());
        SkipWindowsBlanks(text);
    }
    writer.Finish();
}

} // namespace

CommandStringRules HostCommandStringRules() noexcept {
    return HostPathRules() == PathRules::Windows ? CommandStringRules::Windows : CommandStringRules::Posix;
}

std::vector<std::string> SplitCommandString(std::string_view command, CommandStringRules rules) {
    std::vector<std::string> arguments;
    SplitCommandString(command, rules, arguments);
    return arguments;
}

void SplitCommandString(std::string_view command, CommandStringRules rules, std::vector<std::string>& arguments) {
    switch (rules) {
    case CommandStringRules::Posix:
        SplitByPosixRules(command, arguments);
        return;
    case CommandStringRules::Windows:
        SplitByWindowsRules(command, arguments);
        return;
    }
}

} // namespace Orvanta
