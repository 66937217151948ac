#include "FuzzInput.h"
#include "report/Exceptions.h"
#include "suppress/SuppressBase.h"

#include <sstream>
#include <string>

using namespace OrvlogConverter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream text{std::string(Orvanta::FuzzText(data, size))};
    try {
        const SuppressBase base = SuppressBase::Parse(text, "base");
        Orvanta::Require(base.Size() <= size);
    } catch (const ParseException& error) {
        Orvanta::Require(std::string(error.what()).starts_with("base"));
    }
    return 0;
}
