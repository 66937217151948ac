#include "platform/Console.h"

#include "platform/ConsoleStream.h"
#include "platform/Exceptions.h"

#include <atomic>

namespace Orvanta {

namespace {

// Set once each: at start, and when standard output is lost.
std::atomic<MessagePlace> messagePlace = MessagePlace::StandardOutput;
std::atomic<bool> isOutputLost = false;

// With a blank in front of each line that would look like a finding.
// A reader of the output takes each line that begins with "{" for a finding.
std::string KeptApart(std::string_view text) {
    std::string kept;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '{' && (at == 0 || text[at - 1] == '\n')) {
            kept += ' ';
        }
        kept += text[at];
    }
    return kept;
}

bool HasLineLikeAFinding(std::string_view text) {
    return text.starts_with('{') || text.find("\n{") != std::string_view::npos;
}

} // namespace

void PlaceMessages(MessagePlace place) noexcept {
    messagePlace.store(place);
}

MessagePlace PlaceOfMessages() noexcept {
    return messagePlace.load();
}

std::optional<unsigned> MessageColumns() noexcept {
    return TerminalColumns(PlaceOfMessages() == MessagePlace::StandardError ? StandardStream::Error
                                                                            : StandardStream::Output);
}

void WriteMessage(std::string_view bytes) noexcept {
    switch (PlaceOfMessages()) {
    case MessagePlace::StandardOutput:
        WriteToStream(StandardStream::Output, bytes);
        return;
    case MessagePlace::StandardError:
        WriteToStream(StandardStream::Error, bytes);
        return;
    case MessagePlace::AmongFindings:
        break;
    }
    // The one place that changes what it is handed, and so may need memory.
    try {
        WriteToStream(StandardStream::Output, HasLineLikeAFinding(bytes) ? KeptApart(bytes) : std::string(bytes));
    } catch (const std::bad_alloc&) {
        return; // nothing can be told any more
    }
}

void WriteResultToStandardOutput(std::string_view bytes) {
    if (const std::string fault = WriteToStream(StandardStream::Output, bytes); !fault.empty()) {
        // Remembered beside the exception: whoever catches that may go on, and the run has failed all the same.
        isOutputLost.store(true);
        throw FileException("standard output", fault);
    }
}

bool IsStandardOutputLost() noexcept {
    return isOutputLost.load();
}

void WriteToStandardError(std::string_view bytes) noexcept {
    WriteToStream(StandardStream::Error, bytes);
}

} // namespace Orvanta
