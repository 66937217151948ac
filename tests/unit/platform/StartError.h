#pragma once

#include "platform/Process.h"

#include <string>
#include <string_view>
#include <utility>

namespace Orvanta {

/// What a start that failed said behind "Couldn't start ", and what was at fault.
using StartError = std::pair<std::string, ProcessStartException::Cause>;

inline StartError TryToStart(const Arguments& command, const std::string& directory = {}) {
    try {
        const Process process(command, directory, OwnEnvironmentBlock(), nullptr, nullptr);
        return {"it started", ProcessStartException::Cause::Program};
    } catch (const ProcessStartException& error) {
        constexpr std::string_view Start = "Couldn't start ";
        const std::string_view text = error.what();
        return {std::string(text.starts_with(Start) ? text.substr(Start.size()) : text), error.WhatFailed()};
    }
}

} // namespace Orvanta
