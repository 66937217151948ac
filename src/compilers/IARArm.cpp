#include "compilers/IARArm.h"

namespace Orvanta {

IARArm::IARArm() : IARArm_v7_OrOlder(CompilerType::IARArm) {}

std::vector<std::string> IARArm::BuildPreprocessCommand(const ParsedCommand& command,
                                                        const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 9);
    words.insert(words.end(), {"--no_warnings", "--silent", "--source_encoding", "locale", "--text_out", "locale",
                               "--preprocess=nl", outputPath, WithFolder(command.sourceFile)});
    return words;
}

} // namespace Orvanta
