#include "platform/StopFlag.h"

namespace Orvanta {

StopFlag& ProcessStopFlag() noexcept {
    // Not made on the first call: the signal handler could be that, and may not wait for another thread that is making
    // it.
    static constinit StopFlag flag;
    return flag;
}

} // namespace Orvanta
