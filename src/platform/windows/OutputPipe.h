#pragma once

#include "platform/Process.h"
#include "platform/windows/Handle.h"

#include <memory>

namespace Orvanta {

/// One output of a child: both ends of a pipe, and who takes what comes out of it. One thread may wait for several of
/// them and for other things at once.
class OutputPipe {
public:
    /// \throws SystemFault
    explicit OutputPipe(OutputReceiver receiver);
    ~OutputPipe();
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    /// The end for the child, which inherits it.
    [[nodiscard]] void* ChildEnd() const noexcept;

    /// To be called once the child has its end.
    void StartReading();

    /// False when nobody is left who could write.
    [[nodiscard]] bool IsOpen() const noexcept;

    /// Becomes signalled when there is something to receive.
    [[nodiscard]] void* Event() const noexcept;

    /// Hands on what has come, without waiting.
    void Receive();

    /// Hands on what the child has left, and closes the pipe. Another process may still hold the other end, and even
    /// write: it is not waited for.
    void Drain();

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Orvanta
