#pragma once

namespace Orvanta {

/// Installs the interrupt handler and lets the system interrupt this process, more than once. The exit code says
/// whether the stop flag did what it should.
int BeInterrupted();

/// The system's number of this process.
unsigned long OwnProcessId();

} // namespace Orvanta
