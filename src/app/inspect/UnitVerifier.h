#pragma once

#include "analysis/UnitPlan.h"
#include "analysis/UnitRun.h"
#include "app/inspect/ComparableText.h"
#include "buildinput/InvocationTrail.h"
#include "compilers/CommandNotes.h"

#include <optional>
#include <string>
#include <vector>

namespace Orvanta {

/// What came of the comparison of one unit.
struct UnitVerification {
    enum class Outcome { Equal, Different, Failed, LeftOut, Stopped };

    Outcome outcome = Outcome::Stopped;
    std::string reason = {};              ///< why it can't be compared
    std::vector<std::string> causes = {}; ///< of a difference: flags, or the file with arguments
    std::string place = {};               ///< of the first different line: in the driver's text
    std::string driverLine = {};
    std::string buildLine = {};
};

/// Preprocesses a unit twice: by the driver's command, and by the build's own, in which nothing but what is for the
/// output is another, with the macro and the folders that the run adds. Where the texts differ it takes out of the
/// build's command, one after another, what the driver leaves out, and so finds which of it makes the difference.
/// One thread uses an object, and once.
class UnitVerifier {
public:
    /// `trail` is null where the build named no file with arguments. `folders` is the number of folders that the
    /// options add. All outlive the object.
    UnitVerifier(const UnitPlan& plan, const InvocationTrail* trail, std::size_t folders, const UnitRunContext& context,
                 PassProgress& progress)
        : plan_(plan), trail_(trail), added_(folders + 1), context_(context), progress_(progress) {}

    [[nodiscard]] UnitVerification Verify();

private:
    // A text, or why there is none.
    struct Attempt {
        std::optional<ComparableText> text = {};
        std::string fault = {};
        bool isStopped = false;
    };

    // A command of the build with the parts that it is made of.
    struct OwnCommand {
        std::vector<std::string> arguments;
        std::vector<WordNote> notes;
    };

    // Runs the words in the unit's place, and reads what they leave.
    [[nodiscard]] Attempt Run(const Arguments& words, const ParsedCommand& parsed, const std::string& path);
    [[nodiscard]] Attempt RunOwn(const OwnCommand& command, const std::vector<bool>& left);
    // The command as the build has run it, files with arguments not expanded; absent where one of them holds what must
    // not be run again.
    [[nodiscard]] std::optional<OwnCommand> Unexpanded(const OwnCommand& expanded) const;
    // Finds the flags of which the text depends. `text` is the build's own.
    void FindCauses(const OwnCommand& command, Attempt text, const Attempt& driver, UnitVerification& verification);
    [[nodiscard]] std::string PathOf(const char* ending);

    [[nodiscard]] static bool IsSame(const Attempt& left, const Attempt& right);

    const UnitPlan& plan_;
    const InvocationTrail* trail_;
    std::size_t added_; // arguments at the end of the kept ones that the run adds
    const UnitRunContext& context_;
    PassProgress& progress_;
    std::size_t runs_ = 0;
};

} // namespace Orvanta
