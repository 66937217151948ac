#include "analysis/ReplayScripts.h"

#include "platform/Text.h"

#include <string_view>

namespace Orvanta {

namespace {

// "%1%" is the core's flags with a blank in front of each.
constexpr std::string_view PosixOfCore = R"(#!/bin/sh
# Runs the core on this unit again: replay.sh [CORE]
# ORVANTA_CORE names the core too. The code is the core's; its findings are put into replayed.findings.
core=${1:-${ORVANTA_CORE:-Orvanta.exe}}
case $core in
/*) ;;
*/*) core=$PWD/$core ;;
esac
case $0 in
*/*) cd "${0%/*}" || exit 127 ;;
esac
: > replayed.findings || exit 127
"$core" --cfg settings.cfg%1%
)";

constexpr std::string_view WindowsOfCore = R"(@echo off
rem Runs the core on this unit again: replay.cmd [CORE]
rem ORVANTA_CORE names the core too. The code is the core's; its findings are put into replayed.findings.
setlocal
set "core=%~1"
if not defined core set "core=%ORVANTA_CORE%"
if not defined core set "core=Orvanta.exe"
if exist "%core%" for %%I in ("%core%") do set "core=%%~fI"
cd /d "%~dp0."
if not exist settings.cfg exit /b 127
type nul > replayed.findings
if not exist replayed.findings exit /b 127
"%core%" --cfg settings.cfg)";

constexpr std::string_view PosixWithoutText = R"(#!/bin/sh
# The compiler has failed, so the core never saw this unit: what the compiler said, and its code.
# Its command stands in bundle.json, with the variables that it looks into.
case $0 in
*/*) cd "${0%/*}" || exit 127 ;;
esac
while IFS= read -r line || [ -n "$line" ]; do printf '%s\n' "$line"; done < compiler.stdout
while IFS= read -r line || [ -n "$line" ]; do printf '%s\n' "$line"; done < compiler.stderr >&2
exit )";

constexpr std::string_view WindowsWithoutText = R"(@echo off
rem The compiler has failed, so the core never saw this unit: what the compiler said, and its code.
rem Its command stands in bundle.json, with the variables that it looks into.
cd /d "%~dp0."
if not exist compiler.stdout exit /b 127
type compiler.stdout
type compiler.stderr 1>&2
exit /b )";

// The command interpreter misreads batch files whose lines end otherwise.
std::string WithWindowsLineEnds(std::string_view text) {
    std::string lines;
    while (!text.empty()) {
        lines.append(TakeLine(text)).append("\r\n");
    }
    return lines;
}

} // namespace

ReplayScripts ScriptsOfCore(const Arguments& flags) {
    std::string words;
    for (const std::string& flag : flags) {
        words += ' ' + flag;
    }
    return {FillPlaceholders(PosixOfCore, {words}),
            WithWindowsLineEnds(std::string(WindowsOfCore) + words + "\nexit /b %errorlevel%\n")};
}

ReplayScripts ScriptsWithoutText(int compilerCode) {
    const std::string code = std::to_string(compilerCode) + '\n';
    return {std::string(PosixWithoutText) + code, WithWindowsLineEnds(std::string(WindowsWithoutText) + code)};
}

} // namespace Orvanta
