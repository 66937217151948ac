#pragma once

#include "buildinput/InvocationCollector.h"
#include "buildinput/trace/TraceProcess.h"

#include <deque>
#include <memory>
#include <string>

// What compilers start (cc1, an assembler, a linker, another driver) is part of their own run. A launcher that is not
// looked into is no such run when it starts a compiler: that one counts in its place. When it has started none, as a
// cache that had the result, the launcher's own command counts. Neither is known when the run begins, and so it waits.

namespace Orvanta {

/// Hands the compilers' runs of a trace to the collector, in the order in which they began. A run waits until the trace
/// has told where it took place and that no other compiler started it.
class InvocationQueue {
public:
    /// `collector` must outlive the queue.
    explicit InvocationQueue(InvocationCollector& collector) : collector_(collector) {}

    /// Takes a run, and hands over what need not wait any more, this one perhaps.
    /// \throws ZelmException "No pwd", as Flush
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

    /// Whether it is within another compiler's run, and tells the launchers on the way the same of themselves. Unknown
    /// while the start of a process on the way is.
    [[nodiscard]] static Place PlaceOf(const TracedInvocation& invocation);
    /// Marks all launchers around it as having started a compilation, up to the first that is marked already.
    static void TellLaunchers(const TracedInvocation& invocation);
    /// Gives the origin whose directory is missing one, so that the invocation's is absolute from here on.
    /// \throws ZelmException "No pwd" when neither the trace nor the user gives one
    void GuessDirectory(const TracedInvocation& invocation) const;
    /// Gives the run to the collector, and may take its arguments and its fault away. `directory` is absolute, or
    /// empty for a run with a fault.
    void HandOver(TracedInvocation& invocation, const std::string& directory);
    /// The queue must not be empty. With `mayGuess` it never has to wait.
    bool TakeFirst(bool mayGuess);

    InvocationCollector& collector_;
    std::deque<std::shared_ptr<TracedInvocation>> waiting_;
};

} // namespace Orvanta
