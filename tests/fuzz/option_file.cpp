#include "FuzzInput.h"
#include "buildinput/OptionFile.h"
#include "compilers/IARArm.h"
#include "compilers/Keil5.h"
#include "compilers/TiArmCGT.h"
#include "platform/Exceptions.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Keil5 keil;
    static const TiArmCGT ti;
    static const IARArm iar;
    for (const OptionFileSyntax& syntax : {keil.OptionFiles(), ti.OptionFiles(), iar.OptionFiles()}) {
        try {
            std::size_t bytes = 0;
            for (const std::string& word : SplitOptionFile(FuzzText(data, size), syntax, "input.via")) {
                bytes += word.size();
            }
            Require(bytes <= size);
        } catch (const ZelmException&) {
            // A quote that is not closed.
        }
    }
    return 0;
}
