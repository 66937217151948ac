#pragma once

#include "compilers/IARArm_v7_OrOlder.h"

namespace Orvanta {

/// The compiler of IAR for ARM from release 8 on, which has other switches for the encodings of texts.
class IARArm : public IARArm_v7_OrOlder {
public:
    IARArm();
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
};

} // namespace Orvanta
