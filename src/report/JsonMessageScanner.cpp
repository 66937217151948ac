#include "report/JsonMessageScanner.h"

#include "report/Utf8.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <system_error>
#include <vector>

namespace OrvlogConverter {

namespace {

// The ASCII characters that stand for themselves in a string.
constexpr std::array<bool, 256> IsPlain = [] {
    std::array<bool, 256> isPlain = {};
    for (std::size_t character = ' '; character < 0x80; ++character) {
        isPlain[character] = character != '"' && character != '\\';
    }
    return isPlain;
}();

/// Takes parts off the front of a JSON text. Every function is false when the text goes on in another way.
class Cursor {
public:
    explicit Cursor(std::string_view text) : text_(text) {}

    // White space may stand in front of every part.
    bool Take(char character) {
        SkipSpace();
        if (at_ == text_.size() || text_[at_] != character) {
            return false;
        }
        ++at_;
        return true;
    }

    // Whether nothing but white space is left.
    bool IsAtEnd() {
        SkipSpace();
        return at_ == text_.size();
    }

    // A longer word that begins so is met as a wrong separator behind it.
    bool TakeWord(std::string_view word) {
        SkipSpace();
        if (text_.substr(at_, word.size()) != word) {
            return false;
        }
        at_ += word.size();
        return true;
    }

    // A key without escapes, as a view.
    bool TakeKey(std::string_view& key) {
        if (!Take('"')) {
            return false;
        }
        const std::size_t end = text_.find('"', at_);
        if (end == std::string_view::npos) {
            return false;
        }
        key = text_.substr(at_, end - at_);
        at_ = end + 1;
        return Take(':');
    }

    // A whole number of 32 bits. Zeros in front are no JSON.
    bool TakeNumber(std::uint32_t& number) {
        SkipSpace();
        const char* const begin = text_.data() + at_;
        const char* const end = text_.data() + text_.size();
        const auto [stop, error] = std::from_chars(begin, end, number);
        const auto length = static_cast<std::size_t>(stop - begin);
        if (error != std::errc{} || (length > 1 && *begin == '0')) {
            return false;
        }
        at_ += length; // a fraction or an exponent is met as a wrong separator
        return true;
    }

    // The text of a string, with its escapes resolved. Runs of plain characters are copied at once.
    bool TakeString(std::string& target) {
        if (!Take('"')) {
            return false;
        }
        target.clear();
        while (true) {
            const std::size_t begin = at_;
            SkipPlain();
            target.append(text_, begin, at_ - begin);
            if (at_ == text_.size()) {
                return false;
            }
            if (text_[at_] == '"') {
                ++at_;
                return true;
            }
            if (text_[at_] != '\\' || !TakeEscape(target)) {
                return false;
            }
        }
    }

private:
    void SkipSpace() {
        while (at_ < text_.size() &&
               (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\r' || text_[at_] == '\n')) {
            ++at_;
        }
    }

    // Stops at the closing quote, an escape, and what must not stand in a string.
    void SkipPlain() {
        while (true) {
            while (at_ < text_.size() && IsPlain[static_cast<unsigned char>(text_[at_])]) {
                ++at_;
            }
            if (at_ == text_.size() || static_cast<unsigned char>(text_[at_]) < 0x80) {
                return;
            }
            const Utf8Step step = NextUtf8(text_, at_);
            if (!step.isValid) {
                return;
            }
            at_ += step.length;
        }
    }

    // One character behind a backslash. Escapes by number are left to the library: they may come in pairs.
    bool TakeEscape(std::string& target) {
        constexpr std::string_view Escapes = "\"\\/bfnrt";
        constexpr std::string_view Meanings = "\"\\/\b\f\n\r\t";
        const std::size_t index = at_ + 1 < text_.size() ? Escapes.find(text_[at_ + 1]) : std::string_view::npos;
        if (index == std::string_view::npos) {
            return false;
        }
        target += Meanings[index];
        at_ += 2;
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

// The word decides; any other text is no boolean.
bool TakeBoolean(Cursor& cursor, bool& value) {
    value = cursor.TakeWord("true");
    return value || cursor.TakeWord("false");
}

// Both members in either order, and no others.
bool TakePosition(Cursor& cursor, MessagePosition& position) {
    std::string_view key;
    if (!cursor.Take('{') || !cursor.TakeKey(key)) {
        return false;
    }
    const bool isFileFirst = key == "file";
    const auto takeLine = [&] {
        return cursor.TakeNumber(position.line);
    };
    const auto takeFile = [&] {
        return cursor.TakeString(position.file);
    };
    if (!isFileFirst && key != "line") {
        return false;
    }
    return (isFileFirst ? takeFile() : takeLine()) && cursor.Take(',') && cursor.TakeKey(key) &&
           key == (isFileFirst ? "line" : "file") && (isFileFirst ? takeLine() : takeFile()) && cursor.Take('}');
}

// A list of positions, which may be empty.
bool TakePositions(Cursor& cursor, std::vector<MessagePosition>& positions) {
    if (!cursor.Take('[')) {
        return false;
    }
    std::size_t count = 0;
    if (!cursor.Take(']')) {
        do {
            // Those of the message before are filled anew, with the memory of their texts.
            if (count == positions.size()) {
                positions.emplace_back();
            }
            if (!TakePosition(cursor, positions[count])) {
                return false;
            }
            ++count;
        } while (cursor.Take(','));
        if (!cursor.Take(']')) {
            return false;
        }
    }
    positions.resize(count);
    return true;
}

/// Where the values of one object go.
struct Target {
    ReportMessage& message;
    std::array<std::string, 3>& lines;
};

// What the library requires, the scanner requires too: a message that lacks a key is told of by the library.
struct KeyRow {
    std::string_view key;
    bool isRequired;
    bool (*take)(Cursor& cursor, const Target& target);
};

// In the order in which messages are written, so that the search for a key is short.
constexpr KeyRow Keys[] = {
    {"falseAlarm", true,
     [](Cursor& cursor, const Target& to) {
         return TakeBoolean(cursor, to.message.falseAlarm);
     }},
    {"level", true,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeNumber(to.message.level);
     }},
    {"code", true,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeString(to.message.code);
     }},
    {"message", true,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeString(to.message.message);
     }},
    {"positions", true,
     [](Cursor& cursor, const Target& to) {
         return TakePositions(cursor, to.message.positions);
     }},
    {"cwe", false,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeNumber(to.message.cwe);
     }},
    {"sastId", false,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeString(to.message.sastId);
     }},
    {"prevLine", false,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeString(to.lines[0]);
     }},
    {"currLine", false,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeString(to.lines[1]);
     }},
    {"nextLine", false,
     [](Cursor& cursor, const Target& to) {
         return cursor.TakeString(to.lines[2]);
     }},
};
constexpr std::size_t KeyCount = std::size(Keys);

// One bit for each key, by its place in the table.
constexpr unsigned RequiredKeys = [] {
    unsigned mask = 0;
    for (std::size_t index = 0; index < KeyCount; ++index) {
        mask |= Keys[index].isRequired ? 1U << index : 0U;
    }
    return mask;
}();

// The search begins at the key that is expected next.
std::size_t IndexOf(std::string_view key, std::size_t expected) {
    for (std::size_t offset = 0; offset < KeyCount; ++offset) {
        const std::size_t index = (expected + offset) % KeyCount;
        if (Keys[index].key == key) {
            return index;
        }
    }
    return KeyCount;
}

// All members of the object; false as soon as one of them is not as expected, or at the end when one is missing.
bool TakeMembers(Cursor& cursor, const Target& target) {
    unsigned seen = 0;
    std::size_t expected = 0;
    do {
        std::string_view key;
        if (!cursor.TakeKey(key)) {
            return false;
        }
        const std::size_t index = IndexOf(key, expected);
        // An unknown key, or one that stands twice, is the library's to judge.
        if (index == KeyCount || (seen & 1U << index) != 0 || !Keys[index].take(cursor, target)) {
            return false;
        }
        seen |= 1U << index;
        expected = index + 1;
    } while (cursor.Take(','));
    return (seen & RequiredKeys) == RequiredKeys;
}

} // namespace

bool JsonMessageScanner::Scan(std::string_view text, ReportMessage& message) {
    // These keys may be missing; all others are overwritten.
    message.cwe = 0;
    message.sastId.clear();
    for (std::string& line : lines_) {
        line.clear();
    }
    Cursor cursor(text);
    const Target target = {message, lines_};
    if (!cursor.Take('{') || !TakeMembers(cursor, target) || !cursor.Take('}') || !cursor.IsAtEnd()) {
        return false;
    }
    // The record is used again: what the JSON form does not hold must not stay from another form's message.
    for (MessagePosition& position : message.positions) {
        for (std::string* const line : {&position.prevLine, &position.currLine, &position.nextLine}) {
            line->clear();
        }
        position.prevHash = position.currHash = position.nextHash = 0;
    }
    if (!message.positions.empty()) {
        MessagePosition& first = message.positions.front();
        // Swapped, not moved: the memory of the earlier texts comes back for the next line.
        first.prevLine.swap(lines_[0]);
        first.currLine.swap(lines_[1]);
        first.nextLine.swap(lines_[2]);
    }
    return true;
}

} // namespace OrvlogConverter
