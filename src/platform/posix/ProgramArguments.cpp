#include "platform/ProgramArguments.h"

namespace Orvanta {

std::vector<std::string> ProgramArguments(int count, const char* const* arguments) {
    return {arguments, arguments + count};
}

} // namespace Orvanta
