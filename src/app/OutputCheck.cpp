#include "app/OutputCheck.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"

namespace Orvanta {

void RequireNoInput(const std::string& output, std::span<const std::optional<std::string>> inputs) {
    if (output.empty() || IsOwnOpenFile(output) || LookAt(output).kind != PathKind::File) {
        return; // there is nothing that could be lost
    }
    for (const std::optional<std::string>& input : inputs) {
        if (input && LookAt(*input).IsThere() && IsSameFile(output, *input)) {
            throw ZelmException("The output " + output + " would replace a file that is read: " + *input);
        }
    }
}

} // namespace Orvanta
