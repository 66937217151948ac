#pragma once

#include "bundled/Finding.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// A line of clang-tidy's that names a place, by the line of the text that it has read.
struct ClangNote {
    std::size_t line = 0;
    std::uint32_t column = 0;
    std::string message;

    bool operator==(const ClangNote&) const = default;
};

/// One diagnostic as clang-tidy writes it.
struct ClangDiagnostic {
    ClangNote note;
    std::vector<std::string> checks; ///< that agree on it; at least one
    std::vector<ClangNote> steps;    ///< those that lead to it, and what else is said of it

    bool operator==(const ClangDiagnostic&) const = default;
};

/// All that clang-tidy writes of a text.
struct ClangOutput {
    std::vector<ClangDiagnostic> diagnostics;
    std::string error; ///< the first that kept it from reading the text whole; empty when there is none
};

/// Reads what clang-tidy has written of the text in `textPath`; the lines of code that it shows between are passed
/// over.
[[nodiscard]] ClangOutput ReadClangOutput(std::string_view output, const std::string& textPath);

} // namespace Orvanta
