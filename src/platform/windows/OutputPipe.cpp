#include "platform/windows/OutputPipe.h"

#include "platform/windows/SystemReason.h"
#include "platform/windows/WideText.h"

#include <algorithm>
#include <atomic>
#include <string>

#include <windows.h>

namespace Orvanta {

namespace {

constexpr DWORD BlockSize = 65536;

// A name that no other pipe on the machine has.
// Named, since the system's pipes without a name can't be read while waiting for other things.
std::wstring NewPipeName() {
    static std::atomic<unsigned> counter = 0;
    return ToWide("\\\\.\\pipe\\orvanta-" + std::to_string(::GetCurrentProcessId()) + "-" +
                  std::to_string(counter.fetch_add(1)));
}

Handle Checked(void* value) {
    Handle handle(value);
    if (!handle.IsOpen()) {
        throw LastFault();
    }
    return handle;
}

} // namespace

struct OutputPipe::State {
    OutputReceiver receiver;
    Handle childEnd;
    Handle pipe;
    Handle event;
    OVERLAPPED read{};
    bool isReading = false; // the system owns `read` and `block` meanwhile
    std::unique_ptr<char[]> block = std::make_unique_for_overwrite<char[]>(BlockSize);

    void Start(DWORD most);
    bool Finish(BOOL isToWait, DWORD& count);
    void HandOn(DWORD count) const;
};

void OutputPipe::State::Start(DWORD most) {
    read = {};
    read.hEvent = event.Get();
    // One that could be read at once is finished in the same way: its event is set.
    isReading = ::ReadFile(pipe.Get(), block.get(), std::min(most, BlockSize), nullptr, &read) != FALSE ||
                ::GetLastError() == ERROR_IO_PENDING;
    if (!isReading) {
        pipe.Reset();
    }
}

// True when the read has ended, well or not; the pipe is closed when nothing more can come.
bool OutputPipe::State::Finish(BOOL isToWait, DWORD& count) {
    count = 0;
    if (::GetOverlappedResult(pipe.Get(), &read, &count, isToWait) == FALSE) {
        const DWORD error = ::GetLastError();
        if (error == ERROR_IO_INCOMPLETE) {
            return false;
        }
        // Given up by ourselves: the pipe may hold more.
        if (error != ERROR_OPERATION_ABORTED) {
            pipe.Reset();
        }
    }
    isReading = false;
    return true;
}

void OutputPipe::State::HandOn(DWORD count) const {
    if (count > 0 && receiver) {
        receiver({block.get(), count});
    }
}

OutputPipe::OutputPipe(OutputReceiver receiver) : state_(std::make_unique<State>()) {
    state_->receiver = std::move(receiver);
    const std::wstring name = NewPipeName();
    state_->pipe = Checked(
        ::CreateNamedPipeW(name.c_str(), PIPE_ACCESS_INBOUND | FILE_FLAG_OVERLAPPED | FILE_FLAG_FIRST_PIPE_INSTANCE,
                           PIPE_TYPE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS, 1, 0, BlockSize, 0, nullptr));
    SECURITY_ATTRIBUTES inherited{.nLength = sizeof inherited, .lpSecurityDescriptor = nullptr, .bInheritHandle = TRUE};
    state_->childEnd = Checked(::CreateFileW(name.c_str(), GENERIC_WRITE, 0, &inherited, OPEN_EXISTING, 0, nullptr));
    state_->event = Checked(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

OutputPipe::~OutputPipe() {
    if (state_->isReading) {
        // Waited for, since the system writes into the block until the read has ended.
        ::CancelIoEx(state_->pipe.Get(), &state_->read);
        DWORD count = 0;
        state_->Finish(TRUE, count);
    }
}

void* OutputPipe::ChildEnd() const noexcept {
    return state_->childEnd.Get();
}

void OutputPipe::StartReading() {
    // Ours must go, or the pipe would never come to its end.
    state_->childEnd.Reset();
    state_->Start(BlockSize);
}

bool OutputPipe::IsOpen() const noexcept {
    return state_->pipe.IsOpen();
}

void* OutputPipe::Event() const noexcept {
    return state_->event.Get();
}

void OutputPipe::Receive() {
    DWORD count = 0;
    if (state_->pipe.IsOpen() && state_->Finish(FALSE, count)) {
        state_->HandOn(count);
        if (state_->pipe.IsOpen()) {
            state_->Start(BlockSize);
        }
    }
}

void OutputPipe::Drain() {
    if (!state_->pipe.IsOpen()) {
        return;
    }
    ::CancelIoEx(state_->pipe.Get(), &state_->read);
    DWORD count = 0;
    state_->Finish(TRUE, count);
    state_->HandOn(count);
    DWORD left = 0;
    // As much as is there now: the end comes only when the last holder of the other end is gone.
    if (!state_->pipe.IsOpen() || ::PeekNamedPipe(state_->pipe.Get(), nullptr, 0, nullptr, &left, nullptr) == FALSE) {
        left = 0;
    }
    while (left > 0 && state_->pipe.IsOpen()) {
        state_->Start(left);
        if (state_->isReading && state_->Finish(TRUE, count)) {
            state_->HandOn(count);
            left -= std::min(left, count);
        }
    }
    state_->pipe.Reset();
}

} // namespace Orvanta
