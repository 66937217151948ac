#pragma once

#include "compilers/IARArm_v7_OrOlder.h"

namespace Orvanta {

/// The compiler of IAR for ARM from release 8 on, which has other switches for the encodings of texts.
class IARArm : public IARArm_v7_OrOlder {
public:
    /// Reads commands as the older releases do: the table has the flags of both.
    IARArm();
    /// States the encodings of source and text, so that the bytes of texts come out as they went in.
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
};

} // namespace Orvanta
