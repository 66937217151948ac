#pragma once

#include "analysis/ProcessRun.h"
#include "compilers/ParsedCommand.h"
#include "platform/OnceMap.h"

#include <optional>
#include <string>
#include <string_view>

namespace Orvanta {

class Compiler;

/// A standard's word for the core.
struct ProbedStandard {
    std::string word;
    bool isTold = false; ///< the compiler has told it; else it is what stands for no answer
};

/// Asks compilers for the language standard that they take when no flag names one. Asks once for each compiler,
/// language and set of those arguments and variables that can change the answer; threads that want the same answer wait
/// for it. A compiler that can't be started, or fails, is asked again for the next command: what kept it from answering
/// (a missing folder, a forced include) may be that command's own.
class StandardProbe {
public:
    /// `folder` takes the probe's files, which are removed again. Both must outlive the probe.
    StandardProbe(std::string folder, const StopFlag& stop);

    /// The standard's word for the core. A compiler that fails, hangs or prints no number gives "c99" or "c++14".
    /// `ownVariables` are the invocation's own environment variables.
    [[nodiscard]] ProbedStandard ProbeLanguageStandard(const Compiler& model, const ParsedCommand& command,
                                                       Language language, ProcessPlace place,
                                                       const Environment& ownVariables);

private:
    // Runs the compiler over one line of source and reads the macro's value. One that can't be started, or fails,
    // throws, so that no answer is kept; for one that hangs or prints no number the fallback is, since it would do so
    // again.
    ProbedStandard Ask(const Compiler& model, const ParsedCommand& command, Language language,
                       ProcessPlace place) const;

    std::string folder_;
    const StopFlag& stop_;
    OnceMap<ProbedStandard> answers_;
};

/// The word for the value of __STDC_VERSION__ or __cplusplus.
[[nodiscard]] std::string_view StandardWordOfVersion(long version, Language language) noexcept;

/// The last decimal number in a text; absent when there is none or it is too large.
[[nodiscard]] std::optional<long> LastNumber(std::string_view text) noexcept;

} // namespace Orvanta
