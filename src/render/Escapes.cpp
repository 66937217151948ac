#include "render/Escapes.h"

#include "report/Utf8.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace OrvlogConverter {

namespace {

constexpr std::size_t AsciiSize = 128;
constexpr std::size_t ByteValues = 256;

/// A row of a form: a character and what stands for it. A null text lets the character stand for itself, which only
/// controls need to have said of them.
struct Replacement {
    char character;
    const char* text;
};

/// What stands for each ASCII character; null where the character stands for itself.
struct EscapeTable {
    std::array<const char*, AsciiSize> texts = {};
    /// By byte: whether it is to be looked at more closely. Nearly none is, so it has a dense table of its own.
    std::array<bool, ByteValues> isSpecial = {};
};

// Stands for a character that is to be spelled out.
// Told from the texts of rows by its address.
constexpr const char* SpelledOut = "";

// Every control is spelled out unless a row says otherwise, so that a form which forgets one is safe. At compile time:
// then a character costs one look into a table.
consteval EscapeTable MakeTable(std::span<const Replacement> replacements) {
    EscapeTable table = {};
    for (std::size_t control = 0; control < ' '; ++control) {
        table.texts[control] = SpelledOut;
    }
    table.texts[0x7F] = SpelledOut;
    for (const Replacement& row : replacements) {
        table.texts[static_cast<unsigned char>(row.character)] = row.text;
    }
    for (std::size_t byte = 0; byte < ByteValues; ++byte) {
        table.isSpecial[byte] = byte >= AsciiSize || table.texts[byte] != nullptr;
    }
    return table;
}

// A break would begin a line that looks like a finding of its own. Tabs stay, as source lines are full of them.
constexpr Replacement LineRows[] = {
    {'\n', " "},
    {'\r', " "},
    {'\t', nullptr},
};

// Between quotes a cell may go over several lines, and a quote is written twice.
constexpr Replacement CsvRows[] = {
    {'"', "\"\""},
    {'\n', nullptr},
    {'\r', nullptr},
    {'\t', nullptr},
};

// Breaks and tabs as references: within an attribute, a reader takes them for blanks otherwise.
constexpr Replacement MarkupRows[] = {
    {'&', "&amp;"},  {'<', "&lt;"},   {'>', "&gt;"},   {'"', "&quot;"},
    {'\'', "&#39;"}, {'\n', "&#10;"}, {'\r', "&#13;"}, {'\t', "&#9;"},
};

// The short forms that JSON has. Other controls are told like in the other forms, as text that a person can see.
constexpr Replacement JsonRows[] = {
    {'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"},
};

// "</script>" within a text would end the script, and "<!--" would change how the rest of it is read.
constexpr Replacement JsonInPageRows[] = {
    {'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}, {'<', "\\u003C"},
};

// A command ends with its line, and "%" begins what stands for another character.
constexpr Replacement WorkflowMessageRows[] = {
    {'%', "%25"},
    {'\r', "%0D"},
    {'\n', "%0A"},
    {'\t', nullptr},
};

// A property ends at a comma, and all of them at a colon.
constexpr Replacement WorkflowPropertyRows[] = {
    {'%', "%25"}, {'\r', "%0D"}, {'\n', "%0A"}, {'\t', nullptr}, {':', "%3A"}, {',', "%2C"},
};

// A quote ends the value, a bracket the message, and "|" begins what stands for another character.
constexpr Replacement ServiceMessageRows[] = {
    {'|', "||"}, {'\'', "|'"}, {'[', "|["}, {']', "|]"}, {'\n', "|n"}, {'\r', "|r"}, {'\t', nullptr},
};

// In the order of the forms.
constexpr EscapeTable Tables[] = {MakeTable(LineRows),
                                  MakeTable(CsvRows),
                                  MakeTable(MarkupRows),
                                  MakeTable(JsonRows),
                                  MakeTable(JsonInPageRows),
                                  MakeTable(WorkflowMessageRows),
                                  MakeTable(WorkflowPropertyRows),
                                  MakeTable(ServiceMessageRows)};

/// Code points from the first to the last, both included.
struct CodePointRange {
    std::uint32_t first;
    std::uint32_t last;
};

// Controls above ASCII, what breaks lines, what turns the direction of writing, and what XML does not take.
constexpr CodePointRange SpelledOutRanges[] = {
    {0x0080, 0x009F}, {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFFFE, 0xFFFF},
};

// `text` is one whole character of UTF-8, above ASCII.
std::uint32_t CodePointOf(std::string_view text) noexcept {
    // By the length of the character: which bits of its first byte belong to the number.
    constexpr unsigned LeadBits[] = {0, 0, 0x1F, 0x0F, 0x07};
    std::uint32_t point = static_cast<unsigned char>(text.front()) & LeadBits[text.size()];
    for (const char byte : text.substr(1)) {
        point = point << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    return point;
}

bool IsSpelledOut(std::uint32_t point) noexcept {
    for (const CodePointRange& range : SpelledOutRanges) {
        if (point >= range.first && point <= range.last) {
            return true;
        }
    }
    return false;
}

/// Appends texts in one form to one target. What stands for itself goes over in runs, not byte by byte: most texts are
/// nothing else.
class Escaper {
public:
    Escaper(std::string& target, TextForm form) : target_(target), table_(Tables[static_cast<std::size_t>(form)]) {}

    void Append(std::string_view text) {
        std::size_t begin = 0; // of what stands for itself and is not yet appended
        for (std::size_t at = 0; at < text.size();) {
            const auto byte = static_cast<unsigned char>(text[at]);
            if (!table_.isSpecial[byte]) {
                ++at;
                continue;
            }
            const Utf8Step step = NextUtf8(text, at);
            const std::string_view character = text.substr(at, step.length);
            if (byte >= AsciiSize && step.isValid && !IsSpelledOut(CodePointOf(character))) {
                at += step.length;
                continue;
            }
            // The run before it goes first, then what stands for the character.
            target_ += text.substr(begin, at - begin);
            AppendReplacement(character, step.isValid);
            at += step.length;
            begin = at;
        }
        target_ += text.substr(begin);
    }

private:
    // What is no UTF-8 comes first: it has no code point that could be spelled out.
    void AppendReplacement(std::string_view character, bool isValid) {
        const auto byte = static_cast<unsigned char>(character.front());
        if (!isValid) {
            AppendValidUtf8(target_, character);
        } else if (byte >= AsciiSize) {
            // All ranges end at U+FFFF, so four digits hold every number.
            AppendSpelled('u', CodePointOf(character), 4);
        } else if (table_.texts[byte] == SpelledOut) {
            AppendSpelled('x', byte, 2);
        } else {
            target_ += table_.texts[byte];
        }
    }

    void AppendSpelled(char kind, std::uint32_t number, unsigned digits) {
        std::string spelled = {'\\', kind};
        while (digits-- > 0) {
            spelled += "0123456789ABCDEF"[number >> 4U * digits & 0xFU];
        }
        // Through the form once more: it may want the backslash written in another way.
        Append(spelled);
    }

    std::string& target_;
    const EscapeTable& table_;
};

} // namespace

void AppendEscaped(std::string& target, std::string_view text, TextForm form) {
    Escaper(target, form).Append(text);
}

void AppendCsvCell(std::string& target, std::string_view text) {
    // Blanks before the sign don't keep a spreadsheet from calculating.
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    // An apostrophe in front is what spreadsheets themselves write to say that a cell is text.
    const bool isFormula =
        first != std::string_view::npos && std::string_view("=+-@").find(text[first]) != std::string_view::npos;
    target += isFormula ? "\"'" : "\"";
    AppendEscaped(target, text, TextForm::Csv);
    target += '"';
}

void AppendVisibleJson(std::string& target, std::string_view text) {
    target += '"';
    AppendEscaped(target, text, TextForm::Json);
    target += '"';
}

} // namespace OrvlogConverter
