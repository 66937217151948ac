#include "app/ProgramText.h"
#include "platform/Text.h"

namespace Orvanta {

namespace {

// Text for troff: a point or an apostrophe that begins a line would be a request, a bare "-" a hyphen.
std::string Plain(std::string_view text) {
    std::string plain;
    for (const char character : text) {
        const bool isFirst = plain.empty() || plain.back() == '\n';
        if (isFirst && (character == '.' || character == '\'')) {
            plain += "\\&";
        }
        switch (character) {
        case '\\':
            plain += "\\e";
            break;
        case '-':
            plain += "\\-";
            break;
        default:
            plain += character;
            break;
        }
    }
    return plain;
}

// Lines stay lines, as in the table of a mode's words.
std::string Lines(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        lines += line.empty() ? ".sp" : Plain(line);
        lines += text.empty() ? "\n" : line.empty() ? "\n" : "\n.br\n";
    }
    return lines;
}

std::string NameLine(const OptionText& option) {
    std::string line;
    for (const std::string& name : {option.shortName, option.longName}) {
        if (name.empty()) {
            continue;
        }
        line += line.empty() ? "" : ", ";
        line += "\\fB" + Plain(name) + "\\fR";
        if (!option.valueName.empty()) {
            line += (name.starts_with("--") ? "=" : " ") + ("\\fI" + Plain(option.valueName)) + "\\fR";
        }
    }
    return line.empty() ? "\\fI" + Plain(option.valueName) + "\\fR" : line;
}

void AppendOptions(std::string& page, const CommandText& command) {
    for (const std::vector<OptionText>* const list : {&command.options, &command.arguments}) {
        for (const OptionText& option : *list) {
            page += ".TP\n" + NameLine(option) + "\n" + Lines(option.help);
        }
    }
}

std::string UpperCase(std::string text) {
    for (char& character : text) {
        character = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    }
    return text;
}

} // namespace

std::string ManualPage(const ProgramText& program) {
    std::string_view rest = program.description;
    std::string_view summary = TakeLine(rest);
    if (summary.ends_with('.')) {
        summary.remove_suffix(1);
    }
    std::string page = ".TH " + Plain(UpperCase(program.name)) + " 1 \"\" \"" + Plain(program.version) + "\"\n";
    page += ".SH NAME\n" + Plain(program.name) + " \\- " + Plain(summary) + "\n.SH SYNOPSIS\n.B " +
            Plain(program.name) + "\n";
    page += program.commands.empty() ? "[\\fIOPTION\\fR]... \\fIREPORT\\fR...\n"
                                     : "\\fICOMMAND\\fR [\\fIOPTION\\fR]... [\\fIREPORT\\fR]\n";
    page += ".SH DESCRIPTION\n" + Lines(Trim(rest)) + ".SH OPTIONS\n";
    AppendOptions(page, program.own);
    for (const CommandText& command : program.commands) {
        page += ".SH THE COMMAND " + Plain(UpperCase(command.name)) + "\n.B " + Plain(program.name) + " " +
                Plain(command.name) + "\n.PP\n" + Lines(command.help);
        AppendOptions(page, command);
    }
    if (const std::string_view epilog = Trim(program.epilog); !epilog.empty()) {
        page += ".SH EXIT STATUS\n" + Lines(epilog);
    }
    return page;
}

} // namespace Orvanta
