#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Orvanta {

// A small reader of tags is enough for what Cppcheck writes of a unit, which has no comments and no text. A general
// reader would not give back an element as the text that it was, which the linking needs.

/// A tag, with its place in the text.
struct XmlTag {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string_view text; ///< between "<" and ">"

    // From the second character on: a closing tag begins with the slash that ends other names.
    [[nodiscard]] std::string_view Name() const { return text.substr(0, text.find_first_of(" \t\r\n/", 1)); }

    [[nodiscard]] bool Closes() const { return text.starts_with('/'); }

    [[nodiscard]] bool IsWhole() const { return text.ends_with('/'); }

    [[nodiscard]] bool HasAttributes() const { return text.find('=') != std::string_view::npos; }
};

/// The first tag from `position` on. A quoted value may hold anything.
/// \throws ZelmException when the text ends before it does
[[nodiscard]] XmlTag NextTag(std::string_view xml, std::size_t position);

/// A kill of Cppcheck and a full disk leave such a text.
[[noreturn]] void FailCutShort();

/// An attribute with a value that is written as XML wants it, behind a blank.
[[nodiscard]] std::string XmlAttribute(std::string_view name, std::string_view value);

/// Gives the name and the value of each attribute of a tag to `receive`, in their order; values as they are written.
template <typename Receiver>
void ForEachAttribute(std::string_view tag, const Receiver& receive) {
    constexpr std::string_view Between = "=\"";
    for (std::size_t equals = tag.find(Between); equals != std::string_view::npos;) {
        const std::size_t begin = tag.find_last_of(" \t\r\n", equals) + 1;
        const std::size_t value = equals + Between.size();
        const std::size_t end = tag.find('"', value);
        if (end == std::string_view::npos) {
            return;
        }
        receive(tag.substr(begin, equals - begin), tag.substr(value, end - value));
        equals = tag.find(Between, end + 1);
    }
}

} // namespace Orvanta
