// The scripts hold all names and values themselves, so that nothing is started while a user types.

#include "app/ProgramText.h"
#include "platform/Exceptions.h"
#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

// A name that every shell takes for a function's.
std::string FunctionName(const std::string& program) {
    std::string name = "_" + program;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

std::string Joined(const std::vector<std::string>& words, std::string_view separator = " ") {
    std::string text;
    for (const std::string& word : words) {
        text += text.empty() ? "" : separator;
        text += word;
    }
    return text;
}

// The short name first, where there are both.
std::vector<std::string> NamesOf(const OptionText& option) {
    std::vector<std::string> names;
    for (const std::string& name : {option.shortName, option.longName}) {
        if (!name.empty()) {
            names.push_back(name);
        }
    }
    return names;
}

// The first line of a help, as a word in single quotes that no shell takes apart.
std::string ShortHelp(const std::string& help, std::string_view special) {
    std::string_view rest = help;
    std::string line;
    for (const char character : TakeLine(rest)) {
        if (special.find(character) != std::string_view::npos) {
            line += '\\';
        }
        line += character == '\'' ? "'\\''" : std::string(1, character);
    }
    return line;
}

// The program's own options stand under the empty name.
std::vector<const CommandText*> CommandsAndOwn(const ProgramText& program) {
    std::vector<const CommandText*> all = {&program.own};
    for (const CommandText& command : program.commands) {
        all.push_back(&command);
    }
    return all;
}

// With blanks between them, as the shells take lists of words.
std::string CommandNames(const ProgramText& program) {
    std::vector<std::string> names;
    for (const CommandText& command : program.commands) {
        names.push_back(command.name);
    }
    return Joined(names);
}

// The branches of a case statement over "COMMAND PREVIOUS-WORD".
std::string BashValues(const CommandText& command) {
    std::string text;
    for (const OptionText& option : command.options) {
        // What stands behind such an option is no value of it.
        if (option.kind == ValueKind::None) {
            continue;
        }
        std::vector<std::string> patterns;
        for (const std::string& name : NamesOf(option)) {
            patterns.push_back("\"" + command.name + " " + name + "\"");
        }
        text += "    " + Joined(patterns, " | ") + ")\n";
        switch (option.kind) {
        case ValueKind::Folder:
            text += "        mapfile -t COMPREPLY < <(compgen -d -- \"$current\")\n"
                    "        compopt -o filenames 2>/dev/null\n";
            break;
        case ValueKind::Choices:
            text += "        mapfile -t COMPREPLY < <(compgen -W \"" + Joined(option.choices) + "\" -- \"$current\")\n";
            break;
        case ValueKind::Any:
            text += "        compopt +o default 2>/dev/null\n";
            break;
        case ValueKind::File:
        case ValueKind::None:
            break;
        }
        text += "        return\n        ;;\n";
    }
    return text;
}

// One function: it finds the subcommand, then the option whose value is typed, then offers names.
std::string BashScript(const ProgramText& program) {
    const std::string function = FunctionName(program.name);
    std::string text = "# Completion of " + program.name + " for bash; made by " + program.name +
                       " --print-completion bash.\n" + function +
                       "() {\n"
                       "    local current=${COMP_WORDS[COMP_CWORD]} command=\"\" names=\"\" word\n"
                       "    local previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
                       "    COMPREPLY=()\n"
                       "    # bash cuts \"--option=value\" into three words.\n"
                       "    if [[ $current == = ]]; then\n"
                       "        current=\"\"\n"
                       "    elif [[ $previous == = ]]; then\n"
                       "        previous=${COMP_WORDS[COMP_CWORD - 2]}\n"
                       "    fi\n";
    if (!program.commands.empty()) {
        std::string patterns = CommandNames(program);
        std::replace(patterns.begin(), patterns.end(), ' ', '|');
        text += "    for word in \"${COMP_WORDS[@]:1:COMP_CWORD - 1}\"; do\n"
                "        case $word in\n        " +
                patterns + ")\n            command=$word\n            break\n            ;;\n        esac\n    done\n";
    }
    text += "    case \"$command $previous\" in\n";
    for (const CommandText* const command : CommandsAndOwn(program)) {
        text += BashValues(*command);
    }
    text += "    esac\n    case $command in\n";
    for (const CommandText* const command : CommandsAndOwn(program)) {
        std::vector<std::string> names;
        for (const OptionText& option : command->options) {
            const std::vector<std::string> more = NamesOf(option);
            names.insert(names.end(), more.begin(), more.end());
        }
        text += "    " + (command->name.empty() ? "\"\"" : command->name) + ") names=\"" + Joined(names) + "\" ;;\n";
    }
    text += "    esac\n"
            "    if [[ $current == -* ]]; then\n"
            "        mapfile -t COMPREPLY < <(compgen -W \"$names\" -- \"$current\")\n";
    if (!program.commands.empty()) {
        text += "    elif [[ -z $command ]]; then\n"
                "        mapfile -t COMPREPLY < <(compgen -W \"" +
                CommandNames(program) + "\" -- \"$current\")\n";
    }
    text += "    fi\n}\n# Where nothing is offered, bash completes file names.\ncomplete -o default -F " + function +
            " " + program.name + "\n";
    return text;
}

// What zsh does for a value.
std::string ZshAction(const OptionText& option) {
    switch (option.kind) {
    case ValueKind::File:
        return "_files";
    case ValueKind::Folder:
        return "_files -/";
    case ValueKind::Choices: {
        std::string words = Joined(option.choices);
        for (std::size_t at = words.find(':'); at != std::string::npos; at = words.find(':', at + 2)) {
            words.insert(at, 1, '\\'); // a bare colon would end the list of words
        }
        return "(" + words + ")";
    }
    case ValueKind::Any:
    case ValueKind::None:
        break;
    }
    return " ";
}

// A value may follow a short name at once, and a long one behind "=".
std::string ZshName(const std::string& name, const OptionText& option) {
    if (option.kind == ValueKind::None) {
        return name;
    }
    return name + (name.starts_with("--") ? "=" : "+");
}

// "'*'" lets an option be given again. "+" and "=" have zsh accept the value in the same word and in the next one.
std::string ZshOption(const OptionText& option) {
    constexpr std::string_view Special = "[]:\\";
    std::vector<std::string> names;
    for (const std::string& name : NamesOf(option)) {
        names.push_back(ZshName(name, option));
    }
    std::string text = "        '*'";
    text += names.size() == 1 ? names.front() : "{" + Joined(names, ",") + "}";
    text += "'[" + ShortHelp(option.help, Special) + "]";
    if (option.kind != ValueKind::None) {
        text += ":" + ShortHelp(option.valueName, Special) + ":" + ZshAction(option);
    }
    return text + "' \\\n";
}

// A call of the function that knows options. `takesFiles` says what stands for all other words: reports, or the
// subcommand with its own words behind it.
std::string ZshArguments(const CommandText& command, bool takesFiles) {
    std::string text = "_arguments -S \\\n";
    for (const OptionText& option : command.options) {
        text += ZshOption(option);
    }
    return text + (takesFiles ? "        '*:report:_files'\n" : "        '*::command:->command'\n");
}

// The function itself, which is also called when the file is loaded for the first time.
std::string ZshScript(const ProgramText& program) {
    const std::string function = FunctionName(program.name);
    std::string text = "#compdef " + program.name + "\n# Made by " + program.name + " --print-completion zsh.\n" +
                       function + "() {\n    local context state state_descr line\n    typeset -A opt_args\n    ";
    text += ZshArguments(program.own, program.commands.empty());
    if (!program.commands.empty()) {
        text += "    [[ $state == command ]] || return\n"
                "    if (( CURRENT == 1 )); then\n"
                "        local -a commands=(\n";
        for (const CommandText& command : program.commands) {
            text += "            '";
            text += command.name;
            text += ":";
            text += ShortHelp(command.help, ":\\");
            text += "'\n";
        }
        text += "        )\n        _describe command commands\n        return\n    fi\n    case $words[1] in\n";
        for (const CommandText& command : program.commands) {
            text += "    ";
            text += command.name;
            text += ")\n        ";
            text += ZshArguments(command, true);
            text += "        ;;\n";
        }
        text += "    esac\n";
    }
    return text + "}\n" + function + " \"$@\"\n";
}

// A line for each option; `condition` says when it counts, and is empty for a program without subcommands.
std::string FishOptions(const std::string& program, const CommandText& command, const std::string& condition) {
    const std::string start = "complete -c " + program + condition;
    std::string text;
    for (const OptionText& option : command.options) {
        text += start;
        text += option.shortName.empty() ? "" : " -s " + option.shortName.substr(1);
        text += option.longName.empty() ? "" : " -l " + option.longName.substr(2);
        switch (option.kind) {
        case ValueKind::None:
            break;
        case ValueKind::Any:
            // "-x" takes a value and offers no files.
            text += " -x";
            break;
        case ValueKind::File:
            text += " -r -F";
            break;
        case ValueKind::Folder:
            text += " -x -a '(__fish_complete_directories)'";
            break;
        case ValueKind::Choices:
            text += " -x -a '" + Joined(option.choices) + "'";
            break;
        }
        // fish takes a backslash before a quote inside quotes.
        std::string help = option.help.substr(0, option.help.find('\n'));
        for (std::size_t at = 0; (at = help.find_first_of("'\\", at)) != std::string::npos; at += 2) {
            help.insert(at, 1, '\\');
        }
        text += " -d '" + help + "'\n";
    }
    return text;
}

// A list of lines, none of which knows of the others.
std::string FishScript(const ProgramText& program) {
    std::string text =
        "# Completion of " + program.name + " for fish; made by " + program.name + " --print-completion fish.\n";
    if (program.commands.empty()) {
        return text + FishOptions(program.name, program.own, "");
    }
    // Fish has no state: each line says by itself when it counts.
    const std::string none = " -n 'not __fish_seen_subcommand_from " + CommandNames(program) + "'";
    text += FishOptions(program.name, program.own, none);
    const std::string start = "complete -c " + program.name + none + " -f -a ";
    for (const CommandText& command : program.commands) {
        text += start;
        text += command.name;
        text += " -d '";
        text += ShortHelp(command.help, "");
        text += "'\n";
    }
    for (const CommandText& command : program.commands) {
        text += FishOptions(program.name, command, " -n '__fish_seen_subcommand_from " + command.name + "'");
    }
    return text;
}

} // namespace

std::string CompletionScript(const ProgramText& program, std::string_view shell) {
    if (shell == "bash") {
        return BashScript(program);
    }
    if (shell == "zsh") {
        return ZshScript(program);
    }
    if (shell == "fish") {
        return FishScript(program);
    }
    throw ZelmException("Wrong shell: \"" + std::string(shell) + "\", expected bash, zsh or fish");
}

} // namespace Orvanta
