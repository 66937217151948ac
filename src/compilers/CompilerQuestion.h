#pragma once

#include "platform/Process.h"

#include <chrono>
#include <string>

// Compilers are started to be asked: for their version, or for what they compile. Whatever program answers to the name,
// it must neither hold the run nor fill its memory.

namespace Orvanta {

/// Far more than an answer takes: only what would never come is stopped.
inline constexpr std::chrono::seconds CompilerQuestionTimeout{10};

/// Receives an output into `target`, which outlives it, up to the length of the longest answer, and goes on taking what
/// it does not keep: a program that can't write its output would never end.
[[nodiscard]] OutputReceiver ReceiveAnswer(std::string& target);

/// What a compiler prints when it is asked with one argument; nothing when it can't be started or does not answer.
/// Starts it and waits for it.
[[nodiscard]] CapturedOutput AskCompiler(const std::string& path, const char* question, LauncherWords launcher);

} // namespace Orvanta
