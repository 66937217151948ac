#include "analysis/PrecompiledHeader.h"

#include "platform/Files.h"

namespace Orvanta {

std::optional<std::string> FindPrecompiledForm(const std::string& header, Log& log) {
    for (const char* const ending : {".gch/c++", ".gch/c", ".gch"}) {
        const std::string path = header + ending;
        const bool exists = LookAt(path).IsThere();
        log.VerboseLine("  Source file at path: '" + path + "' exists=" + (exists ? "true" : "false"));
        if (exists) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace Orvanta
