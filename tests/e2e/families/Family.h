#pragma once

#include <span>
#include <string_view>

namespace Orvanta {

/// One command line as a build writes it, and what must come of it.
///
/// Words in "{...}" must be gone from the preprocessing command, words in "[...]" stand only there, "<...>" is the
/// source. "%" is the row's own folder, in whose folder "build" the command runs, "~" a blank within a word.
struct UnitRow {
    const char* command;
    const char* language;
    const char* standard;
    const char* plainChar;          ///< "signed" or "unsigned"
    const char* includes;           ///< folders of headers, the system's among them, with "|" between them
    const char* defines;            ///< likewise, without our own macro
    const char* platform = nullptr; ///< where it is not the family's
    const char* file = nullptr;     ///< the text of the file "options" in the command's folder
};

/// The command lines of one type of compiler.
struct Family {
    const char* name;         ///< a part of the path of its compiler
    const char* strict;       ///< whose command line the double takes it for
    const char* title;        ///< as a verbose run names it
    const char* version;      ///< what the compiler prints for "--version"
    const char* preprocessor; ///< the core's word
    const char* platform;     ///< likewise
    const char* ending;       ///< of the preprocessing command: "@" is the output, "<>" the source
    std::span<const UnitRow> rows;
};

[[nodiscard]] Family GccFamily();
[[nodiscard]] Family ClangFamily();
[[nodiscard]] Family ClFamily();
[[nodiscard]] Family ClangClFamily();
[[nodiscard]] Family Keil5Family();
[[nodiscard]] Family Keil5GnuFamily();
[[nodiscard]] Family Keil6Family();
[[nodiscard]] Family TiArmCGTFamily();
[[nodiscard]] Family GccARMFamily();
[[nodiscard]] Family OlderIARArmFamily();
[[nodiscard]] Family IARArmFamily();
[[nodiscard]] Family QccFamily();
[[nodiscard]] Family XC8Family();

} // namespace Orvanta
