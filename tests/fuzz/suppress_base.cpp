#include "FuzzFile.h"
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
        static const Orvanta::FuzzFile file;
        const std::string& path = file.Hold("");
        base.Write(path);
        const SuppressBase again = SuppressBase::Read(path);
        Orvanta::Require(again.Size() == base.Size() && again.Version() == base.Version());
    } catch (const ParseException& error) {
        Orvanta::Require(std::string(error.what()).starts_with("base"));
    }
    return 0;
}
