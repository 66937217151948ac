#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The tracer writes a call as C would, with what its options add: paths behind the numbers of files (-y), texts in
// hexadecimal (-xx), and "..." behind a text or an array that is longer than it shows (-s). What is cut has to be
// noticed here: half a command would compile to something else.

namespace Orvanta {

/// A text as a trace writes it: between double quotes, with escapes.
struct TraceLiteral {
    std::string_view raw; ///< what stands between the quotes
    bool isCut = false;   ///< only the beginning of the text: "..." follows

    /// The text itself.
    [[nodiscard]] std::string Decode() const;
    /// The same into a text that is used again: what it held is replaced, its memory is kept.
    void DecodeInto(std::string& text) const;
};

/// Texts of an array in the form that a trace writes: ["a", "b"].
struct TraceArray {
    std::vector<TraceLiteral> items;
    bool isWhole = false; ///< the trace shows all of them; a single one may still be cut
};

/// What a call returned.
struct TraceResult {
    std::int64_t value = 0;
    std::string_view comment; ///< what follows: "</path>", " ENOENT (No such file or directory)"
};

/// Takes a call's arguments off its text one by one. Views stay valid as long as the text.
class TraceTextReader {
public:
    /// `text` is what follows the call's opening bracket, or a later part of that.
    explicit TraceTextReader(std::string_view text) : rest_(text) {}

    /// Takes `token` when it comes next.
    bool Take(std::string_view token);

    /// Takes a text in quotes; false when none comes next or its end is missing.
    bool TakeLiteral(TraceLiteral& literal);

    /// Takes an array of texts; false when none comes next or it ends too early. Reuses what `array` holds.
    bool TakeArray(TraceArray& array);

    /// Takes a file number, with the path that may follow it ("3</tmp>"; "AT_FDCWD</tmp>" has no number).
    bool TakeFile(std::optional<std::int64_t>& number, std::optional<std::string>& path);

    /// Takes what is left of the arguments and the result; no value when the call has none, as one that never returned.
    [[nodiscard]] std::optional<TraceResult> TakeResult();

    /// What has not been taken yet.
    [[nodiscard]] std::string_view Rest() const noexcept { return rest_; }

private:
    std::string_view rest_;
};

/// The path that a trace shows behind a file's number: "</tmp/a>". No value when there is none.
[[nodiscard]] std::optional<std::string> TracePath(std::string_view text);

/// What follows the last text in quotes of a call: its result among other things.
[[nodiscard]] std::string_view TailOf(std::string_view text);

/// Whether the text of a call that has ended says that it failed.
[[nodiscard]] bool HasFailed(std::string_view text);

/// Whether the text of a call holds its result, even one that says nothing ("= ?").
[[nodiscard]] bool HasResult(std::string_view text);

} // namespace Orvanta
