#include "platform/StopFlag.h"

namespace Orvanta {

StopFlag& ProcessStopFlag() noexcept {
    static constinit StopFlag flag;
    return flag;
}

} // namespace Orvanta
