#pragma once

namespace Orvanta {

/// What the interrupt handler does with an event of the console; non-zero when it has dealt with it. To be called once
/// the handler is installed, by the system.
int __stdcall HandleConsoleEvent(unsigned long event);

} // namespace Orvanta
