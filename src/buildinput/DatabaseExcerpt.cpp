#include "buildinput/DatabaseExcerpt.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

namespace {

constexpr std::size_t BlockSize = std::size_t{1} << 20U;

/// Cuts a text that comes in blocks into entries. Between two blocks it keeps what belongs to an entry that is not
/// complete, and where in it it stands.
class EntryCutter {
public:
    explicit EntryCutter(const std::function<bool(std::string_view text)>& wants) : wants_(wants) {}

    // False when it is no array.
    bool Take(std::string_view block) {
        const std::size_t added = rest_.size();
        rest_.append(block);
        for (std::size_t at = added; at < rest_.size() && !isEnded_;) {
            at = isInText_ ? BehindText(at) : BehindSign(at);
            if (at == std::string::npos) {
                return false;
            }
        }
        // What lies before the entry under way is done with.
        const std::size_t done = depth_ > 1 ? begin_ : rest_.size();
        line_ += Lines(std::string_view(rest_).substr(counted_, done - counted_));
        rest_.erase(0, done);
        begin_ = 0;
        counted_ = 0;
        return true;
    }

    [[nodiscard]] bool IsWhole() const { return isArray_ && depth_ == 0; }

    std::vector<DatabaseEntry> entries;

private:
    static std::size_t Lines(std::string_view text) {
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    // Goes to the end of the text in quotes, as far as it is there.
    std::size_t BehindText(std::size_t at) {
        const std::size_t end = rest_.find('"', at);
        if (end == std::string::npos) {
            return rest_.size();
        }
        std::size_t backslashes = 0;
        while (backslashes < end && rest_[end - backslashes - 1] == '\\') {
            ++backslashes;
        }
        isInText_ = backslashes % 2 != 0; // then the quote belongs to the text
        return end + 1;
    }

    std::size_t BehindSign(std::size_t at) {
        const char character = rest_[at];
        if (depth_ == 0 && isArray_ && character == '\0') {
            isEnded_ = true; // as for the parser of databases
            return at;
        }
        if (depth_ == 0 && !IsWhiteSpace(character) && (character != '[' || isArray_)) {
            return Utf8Mark.find(character) != std::string_view::npos && !isArray_ ? at + 1 : std::string::npos;
        }
        switch (character) {
        case '"':
            if (depth_ < 2) {
                return std::string::npos; // no entry
            }
            isInText_ = true;
            break;
        case '{':
        case '[':
            isArray_ = true;
            if (depth_++ == 1) {
                begin_ = at;
            }
            break;
        case '}':
        case ']':
            if (--depth_ == 1) {
                FinishEntry(at + 1);
            }
            break;
        default:
            break;
        }
        return at + 1;
    }

    void FinishEntry(std::size_t end) {
        ++number_;
        const std::string_view text = std::string_view(rest_).substr(begin_, end - begin_);
        if (wants_(text)) {
            // Counted only up to where it is asked for.
            line_ += Lines(std::string_view(rest_).substr(counted_, begin_ - counted_));
            counted_ = begin_;
            entries.push_back({number_, line_, std::string(text)});
        }
    }

    const std::function<bool(std::string_view text)>& wants_;
    std::string rest_;        // of the blocks so far, from the entry that is not complete
    std::size_t begin_ = 0;   // of the present entry, in rest_
    std::size_t counted_ = 0; // up to there the lines of rest_ are in line_
    std::size_t line_ = 1;
    std::size_t number_ = 0;
    std::size_t depth_ = 0; // of brackets
    bool isArray_ = false;
    bool isInText_ = false;
    bool isEnded_ = false; // whatever comes
};

} // namespace

std::optional<std::vector<DatabaseEntry>> PickEntries(std::istream& input,
                                                      const std::function<bool(std::string_view text)>& wants) {
    EntryCutter cutter(wants);
    std::string block(BlockSize, '\0');
    while (input) {
        input.read(block.data(), static_cast<std::streamsize>(block.size()));
        if (!cutter.Take(std::string_view(block).substr(0, static_cast<std::size_t>(input.gcount())))) {
            return std::nullopt;
        }
    }
    return cutter.IsWhole() ? std::optional(std::move(cutter.entries)) : std::nullopt;
}

} // namespace Orvanta
