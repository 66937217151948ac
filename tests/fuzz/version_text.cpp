#include "FuzzInput.h"
#include "compilers/CompilerIdentifier.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CompilerType type = FamilyByVersionText(FuzzText(data, size)).type;
    Require(type != CompilerType::Unknown); // a text that says nothing is GCC's
    return 0;
}
