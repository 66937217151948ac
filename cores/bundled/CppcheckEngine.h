#pragma once

#include "bundled/Engine.h"

#include <string>
#include <utility>

namespace Orvanta {

/// Cppcheck, which reads the cut text and has tables for what system headers declare.
class CppcheckEngine : public Engine {
public:
    /// `program` is its file.
    explicit CppcheckEngine(std::string program) : program_(std::move(program)) {}

    [[nodiscard]] EngineKind Kind() const override { return EngineKind::Cppcheck; }

    [[nodiscard]] std::string_view Name() const override { return "Cppcheck"; }

    [[nodiscard]] std::string Version(const std::string& workingDirectory) const override;
    [[nodiscard]] EngineResult Analyze(const UnitSettings& unit, const UnitText& text) const override;
    [[nodiscard]] Arguments CommandFor(const UnitSettings& unit) const override;

private:
    std::string program_;
};

} // namespace Orvanta
