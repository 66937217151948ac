#pragma once

#include "e2e/support/Findings.h"
#include "e2e/support/Sandbox.h"

#include <gtest/gtest.h>

namespace Orvanta {

/// The base of the suites: every test works in a sandbox of its own.
class SandboxTest : public testing::Test {
protected:
    /// The findings of the JSON report at a path in the sandbox.
    [[nodiscard]] std::vector<Finding> Report(std::string_view relative = "report.json") const {
        return FindingsOfReport(sandbox.Read(relative));
    }

    Sandbox sandbox;
};

} // namespace Orvanta
