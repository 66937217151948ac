#include "buildinput/trace/TraceLine.h"

#include "platform/Table.h"
#include "platform/Text.h"

#include <algorithm>

namespace Orvanta {

namespace {

struct CallName {
    std::string_view name;
    TraceCall call;
};

// The most frequent first.
constexpr CallName CallNames[] = {
    {"openat", TraceCall::OpenAt},
    {"open", TraceCall::Open},
    {"execve", TraceCall::Execute},
    {"clone", TraceCall::Fork},
    {"clone2", TraceCall::Fork},
    {"clone3", TraceCall::Fork},
    {"fork", TraceCall::Fork},
    {"vfork", TraceCall::Fork},
    {"chdir", TraceCall::ChangeDirectory},
    {"fchdir", TraceCall::ChangeDirectoryFile},
    {"getcwd", TraceCall::GetDirectory},
    {"execveat", TraceCall::ExecuteAt},
    {"openat2", TraceCall::OpenAt},
};

constexpr std::size_t MostDigits = 9; // processes have smaller numbers
// What may stand at the end of a line that is cut, by the tracer itself or by a message of its own.
constexpr std::string_view Unfinished = "<unfinished ...>";
constexpr std::string_view Detached = "<detached ...>";
constexpr std::string_view ProcessChanged = "<pid changed to ";
constexpr std::string_view Attached = " attached";
constexpr std::string_view AttachedProcess = "strace: Process ";

TraceCall CallByName(std::string_view name) {
    const CallName* const row = FindRow(CallNames, &CallName::name, name);
    return row != nullptr ? row->call : TraceCall::Other;
}

void SkipBlanks(std::string_view& text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
}

/// False when the text begins otherwise; it is then left as it is.
bool TakePrefix(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

/// A number of too many digits may overflow on the way, and is refused.
std::optional<ProcessId> TakeNumber(std::string_view& text) {
    ProcessId number = 0;
    std::size_t length = 0;
    for (; length < text.size() && IsDigit(text[length]); ++length) {
        number = number * 10 + static_cast<ProcessId>(text[length] - '0');
    }
    if (length == 0 || length > MostDigits) {
        return std::nullopt;
    }
    text.remove_prefix(length);
    return number;
}

/// Takes the name of the program that may stand behind a process: "123<make>".
void SkipProgramName(std::string_view& text) {
    if (text.starts_with('<')) {
        text.remove_prefix(std::min(text.find('>'), text.size() - 1) + 1);
    }
}

/// Takes the process off the line: "123 ", "[pid   123] ". A time stamp of digits is none.
std::optional<ProcessId> TakeProcess(std::string_view& line) {
    std::string_view rest = line;
    const bool isBracketed = TakePrefix(rest, "[pid");
    SkipBlanks(rest);
    const std::optional<ProcessId> process = TakeNumber(rest);
    if (!process) {
        return std::nullopt;
    }
    SkipProgramName(rest);
    if (!TakePrefix(rest, isBracketed ? "]" : " ")) {
        return std::nullopt;
    }
    line = rest;
    return process;
}

/// Skips the columns that may stand before the call: "12:34:56.789", "1700000000.123", "(+     0.000123)", the call's
/// number "[  59]", and the place of the instruction "[00007f3f207bfb1d]".
void SkipColumns(std::string_view& text) {
    while (true) {
        SkipBlanks(text);
        std::size_t length = 0;
        if (text.empty()) {
            return;
        }
        if (IsDigit(text.front())) {
            length = text.find(' ');
        } else if (text.starts_with("(+")) {
            length = text.find(')');
        } else if (text.front() == '[') {
            length = text.find(']');
        } else {
            return;
        }
        text.remove_prefix(length == std::string_view::npos ? text.size() : length + 1);
    }
}

bool IsNameCharacter(char character) {
    return (character >= 'a' && character <= 'z') || IsDigit(character) || character == '_' ||
           (character >= 'A' && character <= 'Z');
}

std::size_t NameLength(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && IsNameCharacter(text[length])) {
        ++length;
    }
    return length;
}

/// Cuts off what says that the call goes on in a later line.
bool TakeUnfinishedMark(std::string_view& text) {
    // Each mark ends in one of these, which ends few other lines.
    if (text.empty() || (text.back() != '>' && text.back() != 'd')) {
        return false;
    }
    std::size_t end = std::string_view::npos;
    if (text.ends_with(Unfinished)) {
        end = text.size() - Unfinished.size();
    } else if (text.ends_with(Detached)) {
        end = text.size() - Detached.size();
    } else if (text.ends_with("...>")) {
        end = text.rfind(ProcessChanged);
    } else if (text.ends_with(Attached)) {
        end = text.rfind(AttachedProcess);
    }
    if (end == std::string_view::npos) {
        return false;
    }
    text = text.substr(0, end);
    return true;
}

/// A name and a bracket make a call. Of one that nobody follows no more is kept than that.
void ParseCall(std::string_view text, TraceLine& line) {
    const std::size_t length = NameLength(text);
    if (length == 0 || length == text.size() || text[length] != '(') {
        return;
    }
    line.kind = TraceLine::Kind::Call;
    line.call = CallByName(text.substr(0, length));
    // The text of a call that nobody follows is not looked at: most lines are such.
    if (line.call != TraceCall::Other) {
        line.text = text.substr(length + 1);
        line.isUnfinished = TakeUnfinishedMark(line.text);
    }
}

/// `text` follows "<... ": "execve resumed>) = 0".
void ParseResumption(std::string_view text, TraceLine& line) {
    const std::size_t length = NameLength(text);
    line.kind = TraceLine::Kind::Event;
    const TraceCall call = CallByName(text.substr(0, length));
    text.remove_prefix(length);
    if (TakePrefix(text, " resumed>")) {
        line.kind = TraceLine::Kind::Resumption;
        line.call = call;
        line.text = text;
        line.isUnfinished = call != TraceCall::Other && TakeUnfinishedMark(line.text);
    }
}

/// `text` follows "+++ ": "exited with 0 +++".
void ParseEnd(std::string_view text, TraceLine& line) {
    line.kind = TraceLine::Kind::Event;
    if (text.starts_with("exited with ") || text.starts_with("killed by ")) {
        line.kind = TraceLine::Kind::End;
    } else if (TakePrefix(text, "superseded by execve in pid ")) {
        if (const std::optional<ProcessId> thread = TakeNumber(text)) {
            line.kind = TraceLine::Kind::Replacement;
            line.otherProcess = *thread;
        }
    }
}

} // namespace

TraceLine ParseTraceLine(std::string_view line) {
    TraceLine parsed;
    std::string_view rest = line;
    parsed.process = TakeProcess(rest);
    SkipColumns(rest);
    if (TakePrefix(rest, "<... ")) {
        ParseResumption(rest, parsed);
    } else if (TakePrefix(rest, "+++ ")) {
        ParseEnd(rest, parsed);
    } else if (rest.starts_with("--- ")) {
        parsed.kind = TraceLine::Kind::Event;
    } else {
        ParseCall(rest, parsed);
    }
    if (parsed.kind == TraceLine::Kind::Other && !parsed.process) {
        // The rest of a line that was interrupted has no process in front.
        parsed.kind = TraceLine::Kind::LooseEnd;
        parsed.text = line;
        parsed.isUnfinished = TakeUnfinishedMark(parsed.text);
    }
    return parsed;
}

} // namespace Orvanta
