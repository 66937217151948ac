#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Orvanta {

/// The JSON library's words for the types of values.
namespace JsonType {
inline constexpr std::string_view Null = "null";
inline constexpr std::string_view Boolean = "boolean";
inline constexpr std::string_view Number = "number";
inline constexpr std::string_view Text = "string";
inline constexpr std::string_view Array = "array";
inline constexpr std::string_view Object = "object";
} // namespace JsonType

/// A value that is no text and holds no others.
struct JsonScalar {
    std::string_view type;
    std::string text;                    ///< as it stands in JSON
    std::optional<std::uint64_t> number; ///< absent too for one that is negative or has a fraction
};

/// Hands the many events of the JSON library's parser on as the few that a reader tells apart. `Handler` has these
/// functions, and throws what is wrong; faults of the JSON text itself are thrown as the library's exceptions.
///
///     void TakeScalar(const JsonScalar& value);
///     void TakeText(std::string& text);      // which it may keep
///     void Open(std::string_view type);      // an array or an object
///     void Close(std::string_view type);
///     void TakeKey(std::string& name);
template <typename Handler>
class JsonEvents {
public:
    /// The handler outlives the object.
    explicit JsonEvents(Handler& handler) : handler_(handler) {}

    // The names and results of these functions are the JSON library's: true means to go on.
    bool null() { return TakeScalar({JsonType::Null, "null", {}}); }

    bool boolean(bool value) { return TakeScalar({JsonType::Boolean, value ? "true" : "false", {}}); }

    bool number_integer(std::int64_t value) { return TakeScalar({JsonType::Number, std::to_string(value), {}}); }

    bool number_unsigned(std::uint64_t value) { return TakeScalar({JsonType::Number, std::to_string(value), value}); }

    bool number_float(double, const std::string& text) { return TakeScalar({JsonType::Number, text, {}}); }

    // No JSON text holds one.
    bool binary(nlohmann::json::binary_t&) { return null(); }

    bool string(std::string& text) {
        handler_.TakeText(text);
        return true;
    }

    bool start_object(std::size_t) { return Open(JsonType::Object); }

    bool start_array(std::size_t) { return Open(JsonType::Array); }

    bool end_object() { return Close(JsonType::Object); }

    bool end_array() { return Close(JsonType::Array); }

    bool key(std::string& name) {
        handler_.TakeKey(name);
        return true;
    }

    template <typename Exception>
    bool parse_error(std::size_t, const std::string&, const Exception& error) {
        throw error; // it knows the place in the text
    }

private:
    bool TakeScalar(const JsonScalar& value) {
        handler_.TakeScalar(value);
        return true;
    }

    bool Open(std::string_view type) {
        handler_.Open(type);
        return true;
    }

    bool Close(std::string_view type) {
        handler_.Close(type);
        return true;
    }

    Handler& handler_;
};

/// Reads one JSON document from `input...`, as the library takes it: a stream, or two iterators.
template <typename Handler, typename... Input>
void ReadJson(Handler& handler, Input&&... input) {
    JsonEvents<Handler> events(handler);
    nlohmann::json::sax_parse(std::forward<Input>(input)..., &events);
}

} // namespace Orvanta
