#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace args {
class ArgumentParser;
}

namespace Orvanta {

/// What a shell may offer for a value.
enum class ValueKind {
    None,    ///< the option takes no value
    Any,     ///< nothing to offer
    File,    ///< names of files, and of folders on the way to them
    Folder,  ///< names of folders
    Choices, ///< the words of `OptionText::choices`
};

/// An option as its help shows it.
struct OptionText {
    std::string shortName; ///< with its "-"; empty when there is none
    std::string longName;  ///< with its "--"; empty when there is none
    std::string valueName;
    std::string help;
    ValueKind kind = ValueKind::None;
    std::vector<std::string> choices = {};
};

/// A subcommand, or the whole of a program without any.
struct CommandText {
    std::string name; ///< empty for the program's own options
    std::string help;
    std::vector<OptionText> options;
    std::vector<OptionText> arguments; ///< those without a name: only `valueName` and `help` count
};

/// All that a program's help says.
struct ProgramText {
    std::string name;
    std::string version;
    std::string description;
    std::string epilog;
    CommandText own;
    std::vector<CommandText> commands;
};

/// Takes the text from the parser's own tables; hidden options stay hidden.
[[nodiscard]] ProgramText DescribeProgram(const args::ArgumentParser& parser);

/// The manual page, for man.
[[nodiscard]] std::string ManualPage(const ProgramText& program);

/// A completion script for "bash", "zsh" or "fish".
/// \throws ZelmException for another shell
[[nodiscard]] std::string CompletionScript(const ProgramText& program, std::string_view shell);

/// Adds the hidden options that print these: --print-manual and --print-completion SHELL. Lives as long as the parser.
class TextOptions {
public:
    explicit TextOptions(args::ArgumentParser& parser);
    ~TextOptions();
    TextOptions(const TextOptions&) = delete;
    TextOptions& operator=(const TextOptions&) = delete;

private:
    struct Flags;
    std::unique_ptr<Flags> flags_;
};

} // namespace Orvanta
