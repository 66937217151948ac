#pragma once

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// The forms that a text of a report is written into. Whatever the text holds, it stays one text of its form.
enum class TextForm {
    Line,             ///< a line for people and terminals: line breaks become blanks
    Csv,              ///< inside the quotes of a cell
    Markup,           ///< XML, in text and in quoted attributes
    Json,             ///< inside the quotes of a string
    JsonInPage,       ///< the same, within a script of a page of HTML
    WorkflowMessage,  ///< the message of a GitHub workflow command
    WorkflowProperty, ///< the value of one of its properties
    ServiceMessage,   ///< inside the quotes of a TeamCity service message
};

/// Appends the text as its form wants it. In every form control characters and the marks that turn the direction of
/// writing are spelled out ("\x1B", "\u202E"), so that no text can pass for another one, and what is no UTF-8 is
/// replaced by U+FFFD.
/// Nothing of the text is left out, and no quotes are added.
void AppendEscaped(std::string& target, std::string_view text, TextForm form);

/// Appends a cell of a table of comma-separated values, with its quotes. A spreadsheet takes no text for a formula.
void AppendCsvCell(std::string& target, std::string_view text);

/// Appends a string of JSON, with its quotes.
void AppendVisibleJson(std::string& target, std::string_view text);

} // namespace OrvlogConverter
