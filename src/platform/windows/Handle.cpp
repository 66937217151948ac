#include "platform/windows/Handle.h"

#include <windows.h>

namespace Orvanta {

Handle::Handle(void* value) noexcept : value_(value == INVALID_HANDLE_VALUE ? nullptr : value) {}

void Handle::Reset() noexcept {
    if (value_ != nullptr) {
        ::CloseHandle(std::exchange(value_, nullptr));
    }
}

} // namespace Orvanta
