#include "report/TextNumber.h"

#include "platform/Text.h"
#include "report/Exceptions.h"

#include <charconv>
#include <system_error>

namespace OrvlogConverter {

std::uint32_t ParseNumber(std::string_view text) {
    text = Orvanta::Trim(text);
    const char* const end = text.data() + text.size();
    std::int32_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::invalid_argument || stop != end) {
        throw ParseException("invalid stoi argument");
    }
    if (error == std::errc::result_out_of_range || number < 0) {
        throw ParseException("stoi argument out of range");
    }
    return static_cast<std::uint32_t>(number);
}

} // namespace OrvlogConverter
