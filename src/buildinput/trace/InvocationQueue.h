#pragma once

#include "buildinput/InvocationCollector.h"
#include "buildinput/trace/TraceProcess.h"

#include <deque>
#include <memory>
#include <string>

namespace Orvanta {

/// Hands the compilers' runs of a trace to the collector, in the order in which they began. A run waits until the trace
/// has told where it took place and that no other compiler started it.
class InvocationQueue {
public:
    /// `collector` must outlive the queue.
    explicit InvocationQueue(InvocationCollector& collector) : collector_(collector) {}

    void Add(std::shared_ptr<TracedInvocation> invocation);

    /// Hands over what need not wait any more.
    /// \throws ZelmException "No pwd" when so many wait that the first one's folder has to be guessed and can't be
    void Flush();

    /// Hands over all of them: the trace is at its end.
    /// \throws ZelmException "No pwd"
    void Finish();

private:
    enum class Place {
        Unknown,
        OfItsOwn, ///< no other compiler started it
        Within,   ///< it is part of another compiler's run
    };

    [[nodiscard]] static Place PlaceOf(const TracedInvocation& invocation);
    static void TellLaunchers(const TracedInvocation& invocation);
    void GuessDirectory(const TracedInvocation& invocation) const;
    void HandOver(TracedInvocation& invocation, const std::string& directory);
    bool TakeFirst(bool mayGuess);

    InvocationCollector& collector_;
    std::deque<std::shared_ptr<TracedInvocation>> waiting_;
};

} // namespace Orvanta
