#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Writes one JSON value from the events that a parser gives of it, without ever calling itself: what is nested deeper
/// than `DeepestJson` is refused. Ready for the next value when one is whole.
class JsonCopy {
public:
    /// Where the value's text is appended; outlives the copy of it.
    void Begin(std::string& target) { target_ = &target; }

    /// Whether a value is being copied.
    [[nodiscard]] bool IsOpen() const noexcept { return target_ != nullptr; }

    /// A value that is no object and no list, as JSON.
    void Scalar(std::string_view json);
    /// A text, with the bytes that it stands for.
    void Text(std::string_view text);
    /// The key of an object's next member.
    void Key(std::string_view name);
    /// The begin of an object or a list: "{" or "[".
    /// \throws ParseException when it is nested too deep
    void Open(char bracket);
    /// The end of the innermost one: "}" or "]".
    void Close(char bracket);

private:
    void BeginValue();
    void EndValue();

    std::string* target_ = nullptr;
    std::size_t depth_ = 0;
    bool isFirst_ = true; // of what the innermost brackets hold
    bool isBehindKey_ = false;
};

} // namespace OrvlogConverter
