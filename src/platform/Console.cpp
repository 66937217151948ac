#include "platform/Console.h"

#include "platform/ConsoleStream.h"
#include "platform/Exceptions.h"

#include <array>
#include <atomic>
#include <mutex>
#include <new>

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

// Where messages go, when that is one of the streams.
StandardStream StreamOfMessages() {
    return PlaceOfMessages() == MessagePlace::StandardError ? StandardStream::Error : StandardStream::Output;
}

// What is written, and the status line below it. Both streams mostly lead to one terminal, so both are looked after.
class Screen {
public:
    std::string Write(StandardStream stream, std::string_view bytes) noexcept {
        const std::lock_guard lock(mutex_);
        if (bytes.empty() || !isTerminal_[Index(stream)]) {
            return WriteToStream(stream, bytes);
        }
        // A line that has only begun would be cleared with the status: it is shown again when that line has ended.
        isLineOpen_ = bytes.back() != '\n';
        try {
            std::string all(isShown_.load() ? ClearLine : std::string_view());
            all += bytes;
            all += isLineOpen_ ? std::string_view() : status_;
            isShown_.store(!isLineOpen_ && !status_.empty());
            return WriteToStream(stream, all);
        } catch (const std::bad_alloc&) {
            return WriteToStream(stream, bytes);
        }
    }

    void ShowStatus(std::string_view line) noexcept {
        const std::lock_guard lock(mutex_);
        try {
            if (!line.empty() && status_.empty()) {
                // From the first one on, as only then it matters.
                for (const StandardStream stream : {StandardStream::Output, StandardStream::Error}) {
                    isTerminal_[Index(stream)] = TerminalColumns(stream).has_value();
                }
            }
            status_ = line;
            if (isLineOpen_ || (line.empty() && !isShown_.load())) {
                return;
            }
            // The rest of the old line goes behind the new one: cleared first, it would flicker.
            WriteToStream(StreamOfMessages(), line.empty() ? std::string(ClearLine) : '\r' + status_ + "\x1b[K");
            isShown_.store(!line.empty());
        } catch (const std::bad_alloc&) {
            return; // the old one stands a while longer
        }
    }

    [[nodiscard]] bool IsStatusShown() const noexcept { return isShown_.load(); }

private:
    static std::size_t Index(StandardStream stream) { return stream == StandardStream::Output ? 0 : 1; }

    std::mutex mutex_;                    // long texts are written in pieces: without this, two of them could mix
    std::string status_;                  // guarded by mutex_
    std::array<bool, 2> isTerminal_ = {}; // guarded by mutex_; known once a status was shown
    bool isLineOpen_ = false;             // guarded by mutex_
    std::atomic<bool> isShown_ = false;   // written under mutex_; read by the interrupt handler
};

Screen screen;

} // namespace

bool IsStatusShown() noexcept {
    return screen.IsStatusShown();
}

void ShowStatus(std::string_view line) noexcept {
    screen.ShowStatus(line);
}

void PlaceMessages(MessagePlace place) noexcept {
    messagePlace.store(place);
}

MessagePlace PlaceOfMessages() noexcept {
    return messagePlace.load();
}

std::optional<unsigned> MessageColumns() noexcept {
    return TerminalColumns(StreamOfMessages());
}

void WriteMessage(std::string_view bytes) noexcept {
    switch (PlaceOfMessages()) {
    case MessagePlace::StandardOutput:
        screen.Write(StandardStream::Output, bytes);
        return;
    case MessagePlace::StandardError:
        screen.Write(StandardStream::Error, bytes);
        return;
    case MessagePlace::AmongFindings:
        break;
    }
    // The one place that changes what it is handed, and so may need memory.
    try {
        screen.Write(StandardStream::Output, HasLineLikeAFinding(bytes) ? KeptApart(bytes) : std::string(bytes));
    } catch (const std::bad_alloc&) {
        return; // nothing can be told any more
    }
}

void WriteResultToStandardOutput(std::string_view bytes) {
    if (const std::string fault = screen.Write(StandardStream::Output, bytes); !fault.empty()) {
        // Remembered beside the exception: whoever catches that may go on, and the run has failed all the same.
        isOutputLost.store(true);
        throw FileException("standard output", fault);
    }
}

bool IsStandardOutputLost() noexcept {
    return isOutputLost.load();
}

void WriteToStandardError(std::string_view bytes) noexcept {
    screen.Write(StandardStream::Error, bytes);
}

} // namespace Orvanta
