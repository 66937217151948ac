#pragma once

#include "bundled/Engine.h"

#include <string>
#include <utility>

namespace Orvanta {

/// clang-tidy, which also runs clang's static analyzer and tells the compiler's warnings: all of them read the text
/// once. It takes no preprocessed text, so it is given one that looks like a source, in full: what system headers
/// declare, clang must see.
class ClangEngine : public Engine {
public:
    /// `program` is its file.
    explicit ClangEngine(std::string program) : program_(std::move(program)) {}

    [[nodiscard]] EngineKind Kind() const override { return EngineKind::Clang; }

    [[nodiscard]] std::string_view Name() const override { return "clang-tidy"; }

    [[nodiscard]] std::string Version(const std::string& workingDirectory) const override;
    [[nodiscard]] EngineResult Analyze(const UnitSettings& unit, const UnitText& text) const override;
    [[nodiscard]] Arguments CommandFor(const UnitSettings& unit) const override;

private:
    std::string program_;
};

} // namespace Orvanta
