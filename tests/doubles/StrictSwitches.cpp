#include "doubles/StrictSwitches.h"

namespace Orvanta {

namespace {

using Value = SwitchValue;
using Meaning = SwitchMeaning;

// Written from the compilers' manuals, without a look at the tables of the program under test. Of the switches that fit
// an argument, the one with the longest name is meant, and of equals the compiler's own.

// clang-format off
constexpr Switch GccSwitches[] = {
    {"-c"}, {"-S"}, {"-w"}, {"-g"}, {"-pipe"}, {"-pedantic"}, {"-nostdinc"}, {"-pthread"}, {"-v"}, {"-g", Value::Glued},
    {"-O"}, {"-O", Value::Glued}, {"-W", Value::Glued}, {"-Wp", Value::Glued, Meaning::HandedOnByList},
    {"-E", Value::None, Meaning::Preprocess}, {"-o", Value::GluedOrNext, Meaning::Output},
    {"-I", Value::GluedOrNext, Meaning::Include}, {"-iquote", Value::GluedOrNext, Meaning::Include},
    {"-isystem", Value::GluedOrNext, Meaning::Include}, {"-idirafter", Value::GluedOrNext, Meaning::Include},
    {"--sysroot", Value::EqualsOrNext, Meaning::Include}, {"-D", Value::GluedOrNext, Meaning::Define},
    {"-U", Value::GluedOrNext, Meaning::Undefine}, {"-include", Value::GluedOrNext, Meaning::ForcedInclude},
    {"-imacros", Value::GluedOrNext, Meaning::ForcedInclude}, {"-x", Value::GluedOrNext, Meaning::LanguageWord},
    {"-ansi", Value::None, Meaning::Standard, "c90"}, {"-std=c90", Value::None, Meaning::Standard, "c90"},
    {"-std=gnu90", Value::None, Meaning::Standard, "c90"}, {"-std=c99", Value::None, Meaning::Standard, "c99"},
    {"-std=gnu99", Value::None, Meaning::Standard, "c99"}, {"-std=c11", Value::None, Meaning::Standard, "c11"},
    {"-std=gnu11", Value::None, Meaning::Standard, "c11"}, {"-std=c17", Value::None, Meaning::Standard, "c17"},
    {"-std=gnu17", Value::None, Meaning::Standard, "c17"}, {"-std=gnu18", Value::None, Meaning::Standard, "c17"},
    {"-std=c2x", Value::None, Meaning::Standard, "c20"}, {"-std=c++98", Value::None, Meaning::Standard, "c++98"},
    {"-std=gnu++98", Value::None, Meaning::Standard, "c++98"}, {"-std=c++03", Value::None, Meaning::Standard, "c++03"},
    {"-std=c++11", Value::None, Meaning::Standard, "c++11"}, {"-std=gnu++11", Value::None, Meaning::Standard, "c++11"},
    {"-std=c++14", Value::None, Meaning::Standard, "c++14"}, {"-std=gnu++14", Value::None, Meaning::Standard, "c++14"},
    {"-std=c++17", Value::None, Meaning::Standard, "c++17"}, {"-std=gnu++17", Value::None, Meaning::Standard, "c++17"},
    {"-std=c++20", Value::None, Meaning::Standard, "c++20"}, {"-std=gnu++20", Value::None, Meaning::Standard, "c++20"},
    {"-funsigned-char", Value::None, Meaning::UnsignedChar}, {"-fno-signed-char", Value::None, Meaning::UnsignedChar},
    {"-fsigned-char", Value::None, Meaning::SignedChar}, {"-fno-unsigned-char", Value::None, Meaning::SignedChar},
    {"-fPIC"}, {"-fpic"}, {"-fno-exceptions"}, {"-fno-rtti"}, {"-fno-common"}, {"-ffunction-sections"},
    {"-fdata-sections"}, {"-fstack-protector-strong"}, {"-fno-strict-aliasing"}, {"-fno-builtin"}, {"-ffreestanding"},
    {"-fshort-enums"}, {"-fomit-frame-pointer"}, {"-fvisibility", Value::Equals}, {"-fmessage-length", Value::Equals},
    {"-fdiagnostics-color", Value::Equals}, {"-ffp-contract", Value::Equals}, {"-fno-threadsafe-statics"},
    {"-fno-use-cxa-atexit"}, {"-fstack-usage"}, {"-fno-move-loop-invariants"}, {"-fsingle-precision-constant"},
    {"-fexec-charset", Value::Equals}, {"-flto"}, {"--param", Value::EqualsOrNext},
};

constexpr Switch GccOwnSwitches[] = {
    {"-m32"}, {"-m64"}, {"-march", Value::Equals}, {"-mtune", Value::Equals}, {"-msse4.2"}, {"-mno-red-zone"},
    {"-frandom-seed", Value::Equals},
};

constexpr Switch ClangSwitches[] = {
    {"-m32"}, {"-m64"}, {"-march", Value::Equals}, {"-target", Value::Next}, {"--target", Value::Equals},
    {"--gcc-toolchain", Value::Equals}, {"-stdlib", Value::Equals}, {"-fcolor-diagnostics"}, {"-fansi-escape-codes"},
    {"-mllvm", Value::Next}, {"-Xclang", Value::Next, Meaning::HandedOn}, {"-fno-spell-checking"},
    {"-mcpu", Value::Equals}, {"-mthumb"}, {"-Qunused-arguments"}, {"-arch", Value::Next},
};

constexpr Switch ArmClangSwitches[] = {
    {"--target", Value::Equals}, {"-mcpu", Value::Equals}, {"-march", Value::Equals}, {"-mfpu", Value::Equals},
    {"-mfloat-abi", Value::Equals}, {"-mthumb"}, {"-mlittle-endian"}, {"-mno-unaligned-access"}, {"-fshort-wchar"},
    {"-fropi"}, {"-fno-ropi"}, {"-frwpi"}, {"-fno-vectorize"}, {"-mcmse"}, {"-fvfe"}, {"-e"},
};

constexpr Switch ArmGccSwitches[] = {
    {"-mcpu", Value::Equals}, {"-march", Value::Equals}, {"-mtune", Value::Equals}, {"-mfpu", Value::Equals},
    {"-mfloat-abi", Value::Equals}, {"-mthumb"}, {"-mthumb-interwork"}, {"-mlong-calls"}, {"-mcmse"}, {"-mapcs-frame"},
    {"-mno-unaligned-access"}, {"--specs", Value::Equals}, {"-specs", Value::Equals}, {"-T", Value::GluedOrNext},
    {"-nostartfiles"}, {"-nostdlib"}, {"-mlittle-endian"},
};

constexpr Switch QccSwitches[] = {
    {"-P", Value::None, Meaning::Preprocess}, {"-V", Value::GluedOrNext}, {"-Y", Value::GluedOrNext},
    {"-Wc", Value::Glued, Meaning::HandedOnByList}, {"-lang-c", Value::None, Meaning::Mode, {}},
    {"-lang-c++", Value::None, Meaning::AllCpp}, {"-EL"}, {"-EB"}, {"-shared"}, {"-mcpu", Value::Equals},
    {"-fstack-protector-strong"}, {"-m", Value::Glued},
};

constexpr Switch Xc8Switches[] = {
    {"-mcpu", Value::Equals}, {"-mdfp", Value::Equals}, {"-mwarn", Value::Equals}, {"-maddrqual", Value::Equals},
    {"-msummary", Value::Equals}, {"-mstack", Value::Equals}, {"-memi", Value::Equals}, {"-mdebugger", Value::Equals},
    {"-merrata", Value::Equals}, {"-mno-keep-startup"}, {"-mno-osccal"}, {"-mno-resetbits"}, {"-mno-save-resetbits"},
    {"-mno-download"}, {"-mno-stackcall"}, {"-mno-default-config-bits"}, {"-mdefault-config-bits"}, {"-mc90lib"},
    {"-mext", Value::Equals}, {"-mrom", Value::Equals}, {"-mram", Value::Equals}, {"-mreserve", Value::Equals},
    {"-xassembler-with-cpp"}, {"-ginhx32"}, {"-gdwarf-3"}, {"-fshort-double"}, {"-fno-short-double"}, {"-fshort-float"},
    {"-fno-short-float"}, {"-fasmfile"}, {"-mconst-data-in-progmem"}, {"-mparity"}, {"-mrelaxed"},
};

constexpr Switch ClSwitches[] = {
    {"/c"}, {"/nologo"}, {"/W", Value::Glued}, {"/w"}, {"/wd", Value::Glued}, {"/MD"}, {"/MDd"}, {"/MT"}, {"/MTd"},
    {"/EHsc"}, {"/EHs-c-"}, {"/GR"}, {"/GR-"}, {"/GS"}, {"/GS-"}, {"/Gd"}, {"/Gy"}, {"/Gm-"}, {"/Oy-"}, {"/RTC1"},
    {"/bigobj"}, {"/permissive-"}, {"/Za"}, {"/Zc:", Value::Glued}, {"/sdl"}, {"/utf-8"},
    {"/diagnostics:", Value::Glued}, {"/errorReport:", Value::Glued}, {"/external:", Value::Glued},
    {"/fp:", Value::Glued}, {"/arch:", Value::Glued}, {"/await"}, {"/analyze-"}, {"/Zp", Value::Glued},
    {"/P", Value::None, Meaning::Preprocess}, {"/Fi", Value::Glued, Meaning::Output},
    {"/I", Value::GluedOrNext, Meaning::Include}, {"/external:I", Value::GluedOrNext, Meaning::Include},
    {"/D", Value::GluedOrNext, Meaning::Define}, {"/U", Value::GluedOrNext, Meaning::Undefine},
    {"/FI", Value::GluedOrNext, Meaning::ForcedInclude}, {"/J", Value::None, Meaning::UnsignedChar},
    {"/TC", Value::None, Meaning::Mode, {}}, {"/TP", Value::None, Meaning::AllCpp},
    {"/std:c11", Value::None, Meaning::Standard, "c11"}, {"/std:c17", Value::None, Meaning::Standard, "c17"},
    {"/std:c++14", Value::None, Meaning::Standard, "c++14"}, {"/std:c++17", Value::None, Meaning::Standard, "c++17"},
    {"/std:c++20", Value::None, Meaning::Standard, "c++20"},
    {"/std:c++latest", Value::None, Meaning::Standard, "c++20"},
};

constexpr Switch ClangClSwitches[] = {
    {"--"}, {"/m32"}, {"/m64"}, {"--target", Value::Equals}, {"/imsvc", Value::GluedOrNext, Meaning::Include},
    {"/clang:", Value::Glued, Meaning::HandedOn}, {"/Xclang", Value::Next, Meaning::HandedOn}, {"/fms-extensions"},
    {"/fms-compatibility-version", Value::Equals}, {"/fcolor-diagnostics"}, {"/fansi-escape-codes"},
    {"/funsigned-char", Value::None, Meaning::UnsignedChar}, {"/msse4.2"},
};

constexpr Switch ArmccSwitches[] = {
    {"-c"}, {"-g"}, {"-W"}, {"-O0"}, {"-O1"}, {"-O2"}, {"-O3"}, {"-Ospace"}, {"-Otime"},
    {"-E", Value::None, Meaning::Preprocess}, {"-o", Value::GluedOrNext, Meaning::Output},
    {"-I", Value::GluedOrNext, Meaning::IncludeList}, {"-J", Value::GluedOrNext, Meaning::IncludeList},
    {"-D", Value::GluedOrNext, Meaning::Define}, {"-U", Value::GluedOrNext, Meaning::Undefine},
    {"--preinclude", Value::EqualsOrNext, Meaning::ForcedInclude}, {"--c90", Value::None, Meaning::Mode, "c90"},
    {"--c99", Value::None, Meaning::Mode, "c99"}, {"--cpp", Value::None, Meaning::Mode, "c++03"},
    {"--cpp11", Value::None, Meaning::Mode, "c++11"}, {"--signed_chars", Value::None, Meaning::SignedChar},
    {"--unsigned_chars", Value::None, Meaning::UnsignedChar}, {"--cpu", Value::EqualsOrNext},
    {"--fpu", Value::EqualsOrNext}, {"--apcs", Value::EqualsOrNext}, {"--device", Value::EqualsOrNext}, {"--thumb"},
    {"--arm"}, {"--littleend"}, {"--li"}, {"--bigend"}, {"--debug"}, {"--gnu"}, {"--no_gnu"}, {"--strict"},
    {"--strict_warnings"}, {"--no_strict"}, {"--exceptions"}, {"--no_exceptions"}, {"--rtti"}, {"--no_rtti"},
    {"--split_sections"}, {"--multibyte_chars"}, {"--locale", Value::EqualsOrNext}, {"--enum_is_int"},
    {"--interface_enums_are_32_bit"}, {"--wchar32"}, {"--vla"}, {"--md5"}, {"--brief_diagnostics"},
    {"--diag_suppress", Value::EqualsOrNext}, {"--diag_error", Value::EqualsOrNext},
    {"--diag_style", Value::EqualsOrNext}, {"--diag_warning", Value::EqualsOrNext}, {"--remarks"}, {"--no_warnings"},
    {"--fpmode", Value::EqualsOrNext}, {"--old_style_preprocessing"}, {"--no_unaligned_access"},
    {"--library_type", Value::EqualsOrNext}, {"--bss_threshold", Value::Equals}, {"--bitband"}, {"--dwarf2"},
    {"--dwarf3"}, {"--trigraphs"}, {"--licretry"},
};

constexpr Switch TiSwitches[] = {
    {"--no_warnings"}, {"-pdw"}, {"--quiet"}, {"-q"}, {"--compile_only"}, {"-c"}, {"-g"}, {"-n"}, {"--skip_assembler"},
    {"-me"}, {"-mv", Value::Glued}, {"-mf", Value::Glued}, {"-O", Value::Glued}, {"-o", Value::Glued}, {"--gcc"},
    {"--ual"}, {"--preproc_only", Value::None, Meaning::Preprocess}, {"--preproc_with_line"},
    {"--output_file", Value::EqualsOrNext, Meaning::Output}, {"--include_path", Value::EqualsOrNext, Meaning::Include},
    {"-I=", Value::Glued, Meaning::Include}, {"-I", Value::GluedOrNext, Meaning::Include},
    {"--define", Value::EqualsOrNext, Meaning::Define}, {"-D=", Value::Glued, Meaning::Define},
    {"-D", Value::GluedOrNext, Meaning::Define}, {"--undefine", Value::EqualsOrNext, Meaning::Undefine},
    {"-U", Value::GluedOrNext, Meaning::Undefine}, {"--preinclude", Value::EqualsOrNext, Meaning::ForcedInclude},
    {"--c89", Value::None, Meaning::Standard, "c90"}, {"--c99", Value::None, Meaning::Standard, "c99"},
    {"--c11", Value::None, Meaning::Standard, "c11"}, {"--c++03", Value::None, Meaning::Standard, "c++03"},
    {"--c++14", Value::None, Meaning::Standard, "c++14"}, {"--cpp_default", Value::None, Meaning::AllCpp},
    {"-fg", Value::None, Meaning::AllCpp}, {"--c_extension", Value::EqualsOrNext, Meaning::CExtension},
    {"--cpp_extension", Value::EqualsOrNext, Meaning::CppExtension},
    {"--plain_char=signed", Value::None, Meaning::SignedChar}, {"-mc", Value::None, Meaning::SignedChar},
    {"--plain_char=unsigned", Value::None, Meaning::UnsignedChar}, {"--silicon_version", Value::Equals},
    {"--code_state", Value::Equals}, {"--float_support", Value::Equals}, {"--endian", Value::Equals},
    {"--abi", Value::Equals}, {"--opt_level", Value::Equals}, {"--opt_for_speed", Value::Equals},
    {"--fp_mode", Value::Equals}, {"--fp_reassoc", Value::Equals}, {"--symdebug:dwarf"}, {"--symdebug:none"},
    {"--diag_warning", Value::Equals}, {"--diag_suppress", Value::Equals}, {"--diag_wrap", Value::Equals},
    {"--display_error_number"}, {"--gen_func_subsections", Value::Equals}, {"--enum_type", Value::Equals},
    {"--exceptions"}, {"--rtti"}, {"--strict_ansi"}, {"--relaxed_ansi"}, {"--unaligned_access", Value::Equals},
    {"--wchar_t", Value::Equals}, {"--embedded_constants", Value::Equals}, {"--advice:power", Value::Equals},
    {"--issue_remarks"}, {"--verbose_diagnostics"},
};

constexpr Switch IarSwitches[] = {
    {"--no_warnings"}, {"--silent"}, {"-e"}, {"-r"}, {"--debug"}, {"-O", Value::Glued}, {"--thumb"}, {"--arm"},
    {"--interwork"}, {"--preprocess=nl", Value::Next, Meaning::PreprocessTo},
    {"-I", Value::GluedOrNext, Meaning::Include}, {"--system_include_dir", Value::EqualsOrNext, Meaning::Include},
    {"-D", Value::GluedOrNext, Meaning::Define}, {"-U", Value::GluedOrNext, Meaning::Undefine},
    {"--preinclude", Value::EqualsOrNext, Meaning::ForcedInclude}, {"--c89", Value::None, Meaning::Mode, "c90"},
    {"--c++", Value::None, Meaning::AllCpp}, {"--char_is_signed", Value::None, Meaning::SignedChar},
    {"--char_is_unsigned", Value::None, Meaning::UnsignedChar}, {"--cpu", Value::EqualsOrNext},
    {"--fpu", Value::EqualsOrNext}, {"--cpu_mode", Value::EqualsOrNext}, {"--endian", Value::EqualsOrNext},
    {"--dlib_config", Value::EqualsOrNext}, {"--no_cse"}, {"--no_unroll"}, {"--no_inline"}, {"--no_code_motion"},
    {"--no_tbaa"}, {"--no_clustering"}, {"--no_scheduling"}, {"--diag_suppress", Value::EqualsOrNext},
    {"--diag_error", Value::EqualsOrNext}, {"--diag_warning", Value::EqualsOrNext}, {"--no_wrap_diagnostics"},
    {"--strict"}, {"--vla"}, {"--require_prototypes"}, {"--enum_is_int"}, {"--no_path_in_file_macros"}, {"--ropi"},
    {"--use_c++_inline"}, {"--no_exceptions"}, {"--no_rtti"}, {"--relaxed_fp"}, {"--guard_calls"},
};

constexpr Switch Iar7Switches[] = {
    {"--enable_multibytes"}, {"--ec++", Value::None, Meaning::Mode, "c++98"},
    {"--eec++", Value::None, Meaning::Mode, "c++98"}, {"--no_system_include"},
};

constexpr Switch Iar8Switches[] = {
    {"--source_encoding", Value::EqualsOrNext}, {"--text_out", Value::EqualsOrNext}, {"--libc++"}, {"--cmse"},
    {"--no_fragments"}, {"--stack_protection"}, {"--aapcs", Value::EqualsOrNext},
};

constexpr CommandLanguage Languages[] = {
    {"gcc",      GccSwitches,   GccOwnSwitches,   "c17", "c++17", false},
    {"clang",    GccSwitches,   ClangSwitches,    "c17", "c++14", false},
    {"armclang", GccSwitches,   ArmClangSwitches, "c11", "c++14", true },
    {"arm-gcc",  GccSwitches,   ArmGccSwitches,   "c17", "c++17", true },
    {"qcc",      GccSwitches,   QccSwitches,      "c11", "c++14", false},
    {"xc8",      GccSwitches,   Xc8Switches,      "c99", "c++98", true },
    {"cl",       ClSwitches,    {},               "c90", "c++14", false},
    {"clang-cl", ClSwitches,    ClangClSwitches,  "c17", "c++14", false},
    {"armcc",    ArmccSwitches, {},               "c90", "c++98", true },
    {"armcl",    TiSwitches,    {},               "c90", "c++14", true },
    {"iccarm7",  IarSwitches,   Iar7Switches,     "c99", "c++98", true },
    {"iccarm8",  IarSwitches,   Iar8Switches,     "c17", "c++17", true },
};
// clang-format on

} // namespace

std::span<const CommandLanguage> CommandLanguages() {
    return Languages;
}

} // namespace Orvanta
