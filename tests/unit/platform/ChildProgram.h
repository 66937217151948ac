#pragma once

#include "platform/Process.h"

#include <string>

namespace Orvanta {

/// The test's own child program at work, with its outputs.
class ChildProgram {
public:
    explicit ChildProgram(const Arguments& arguments, const Environment& changes = {},
                          const std::string& directory = {})
        : process_(Command(arguments), directory, EnvironmentBlock(WithChanges(changes)),
                   MakeRedirectToStringProcessor(standardOutput_), MakeRedirectToStringProcessor(standardError_)) {}

    /// Waits for the child's first line and returns it, without its end.
    std::string FirstLine() {
        while (standardOutput_.find('\n') == std::string::npos && !process_.WaitForChange(PollInterval)) {
        }
        return standardOutput_.substr(0, standardOutput_.find('\n'));
    }

    int End() { return process_.get_exit_status(); }

    /// Kills the child, leaving it no time to clean up.
    int Kill() {
        process_.kill(true);
        return process_.get_exit_status();
    }

    /// The child itself, for a test of what supervises it.
    [[nodiscard]] Process& ItsProcess() { return process_; }

    [[nodiscard]] const std::string& StandardOutput() const { return standardOutput_; }

    [[nodiscard]] const std::string& StandardError() const { return standardError_; }

private:
    static Arguments Command(const Arguments& arguments) {
        Arguments command = {ORVANTA_PLATFORM_CHILD};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return command;
    }

    std::string standardOutput_;
    std::string standardError_;
    Process process_;
};

} // namespace Orvanta
