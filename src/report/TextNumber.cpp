#include "report/TextNumber.h"

#include "platform/Text.h"
#include "report/Exceptions.h"

#include <limits>
#include <system_error>

namespace OrvlogConverter {

std::uint32_t ParseNumber(std::string_view text) {
    std::int64_t number = 0;
    const std::errc error = Orvanta::ReadWholeNumber(Orvanta::Trim(text), number);
    if (error == std::errc::invalid_argument) {
        throw ParseException("invalid stoi argument");
    }
    if (error != std::errc() || number < 0 || number > std::numeric_limits<std::uint32_t>::max()) {
        throw ParseException("stoi argument out of range");
    }
    return static_cast<std::uint32_t>(number);
}

} // namespace OrvlogConverter
