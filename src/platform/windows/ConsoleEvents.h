#pragma once

namespace Orvanta {

// What a test needs to press keys: no part of the program.

enum class ConsoleEvent { CtrlC, CtrlBreak };

/// Makes this program, and those it starts, receive Ctrl+C also when it was started without.
void ReceiveCtrlC();

/// Makes this program, not those it starts, go on when events come.
void SurviveConsoleEvents();

/// Sends an event to every program of this program's console; false when it has none.
bool SendConsoleEvent(ConsoleEvent event);

/// Ends a process and all that it started as a child outside a job is ended; false when there is none of this number.
bool TerminateTreeOf(unsigned long processId);

} // namespace Orvanta
