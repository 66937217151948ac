#include "compilers/Gcc.h"

namespace Orvanta {

namespace {

constexpr std::string_view GccIntroducers[] = {"-", "--"};

// Of the rows that fit, the one with the longest name wins; their order is for the reader. Options of clang stand here
// too: behind a name such as "cc" it is told from GCC by its version text alone, which a vendor may have changed.
// clang-format off
constexpr FlagRow GccFlags[] = {
    {"E", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"MD", FlagKind::Drop, FlagFile::Written},
    {"MMD", FlagKind::Drop, FlagFile::Written},
    {"MP", FlagKind::Drop, FlagFile::AboutWritten},
    {"MM", FlagKind::Drop, FlagEffect::ListsDependencies},
    // These write macro definitions, with the text or in its place.
    {"dM", FlagKind::Drop},
    {"dD", FlagKind::Drop},
    // Level 3 writes every macro definition into the preprocessed text.
    {"g3", FlagKind::Drop},
    {"ggdb3", FlagKind::Drop},
    {"gstabs3", FlagKind::Drop},
    {"gcoff3", FlagKind::Drop},
    {"gxcoff3", FlagKind::Drop},
    {"gvms3", FlagKind::Drop},
    {"O1", FlagKind::Drop},
    {"O2", FlagKind::Drop},
    {"O3", FlagKind::Drop},
    {"Os", FlagKind::Drop},
    {"Ofast", FlagKind::Drop},
    {"Og", FlagKind::Drop},
    {"O", FlagKind::Drop},
    // Dependency files and what stands in them: the build has written them.
    {"MT", FlagKind::DropWithValue, FlagFile::AboutWritten},
    {"MF", FlagKind::DropWithValue, FlagFile::Written},
    {"MQ", FlagKind::DropWithValue, FlagFile::AboutWritten},
    {"I", FlagKind::UserInclude},
    {"isystem", FlagKind::SystemInclude},
    // A root counts as a folder of the system: nothing below it is the project's own.
    {"isysroot", FlagKind::SystemInclude},
    {"idirafter", FlagKind::SystemInclude},
    {"sysroot=", FlagKind::SystemInclude},
    {"include", FlagKind::ForcedInclude},
    {"ansi", FlagKind::StandardAnsi},
    // GNU's dialects go with the standards that they extend, and the names of drafts with what came of them: the core
    // has words for the standards alone.
    {"std=c89", FlagKind::StandardC90},
    {"std=c90", FlagKind::StandardC90},
    {"std=iso9899:1990", FlagKind::StandardC90},
    {"std=iso9899:199409", FlagKind::StandardC90},
    {"std=gnu89", FlagKind::StandardC90},
    {"std=gnu90", FlagKind::StandardC90},
    {"std=c99", FlagKind::StandardC99},
    {"std=c9x", FlagKind::StandardC99},
    {"std=iso9899:1999", FlagKind::StandardC99},
    {"std=iso9899:199x", FlagKind::StandardC99},
    {"std=gnu99", FlagKind::StandardC99},
    {"std=gnu9x", FlagKind::StandardC99},
    {"std=c11", FlagKind::StandardC11},
    {"std=c1x", FlagKind::StandardC11},
    {"std=iso9899:2011", FlagKind::StandardC11},
    {"std=gnu11", FlagKind::StandardC11},
    // This name and "gnu=gnu18" are meant as they stand: the core is told of -std=gnu1x and -std=gnu18 what the
    // compiler itself says.
    {"gnu=gnu1x", FlagKind::StandardC11},
    {"std=c17", FlagKind::StandardC17},
    {"std=c18", FlagKind::StandardC17},
    {"std=iso9899:2017", FlagKind::StandardC17},
    {"std=iso9899:2018", FlagKind::StandardC17},
    {"std=gnu17", FlagKind::StandardC17},
    {"gnu=gnu18", FlagKind::StandardC17},
    {"std=c2x", FlagKind::StandardC2x},
    {"std=gnu2x", FlagKind::StandardC2x},
    {"std=c++98", FlagKind::StandardCpp98},
    {"std=gnu++98", FlagKind::StandardCpp98},
    {"std=c++03", FlagKind::StandardCpp03},
    {"std=gnu++03", FlagKind::StandardCpp03},
    {"std=c++11", FlagKind::StandardCpp11},
    {"std=gnu++11", FlagKind::StandardCpp11},
    {"std=c++0x", FlagKind::StandardCpp11},
    {"std=gnu++0x", FlagKind::StandardCpp11},
    {"std=c++14", FlagKind::StandardCpp14},
    {"std=gnu++14", FlagKind::StandardCpp14},
    {"std=c++1y", FlagKind::StandardCpp14},
    {"std=gnu++1y", FlagKind::StandardCpp14},
    {"std=c++17", FlagKind::StandardCpp17},
    {"std=gnu++17", FlagKind::StandardCpp17},
    {"std=c++1z", FlagKind::StandardCpp17},
    {"std=gnu++1z", FlagKind::StandardCpp17},
    {"std=c++20", FlagKind::StandardCpp20},
    {"std=gnu++20", FlagKind::StandardCpp20},
    {"std=c++2a", FlagKind::StandardCpp20},
    {"std=gnu++2a", FlagKind::StandardCpp20},
    // Concepts came with C++20: no earlier standard has the core read them.
    {"fconcepts", FlagKind::StandardCpp20},
    {"x", FlagKind::Language},
    {"Wp", FlagKind::Preprocessor},
    {"o", FlagKind::Output},
    {"D", FlagKind::Define},
    {"m32", FlagKind::Target32},
    {"m64", FlagKind::Target64},

    // Plain char is unsigned as soon as this flag stands anywhere; families in which the last of all four decides have
    // rows for the others.
    {"funsigned-char", FlagKind::Keep, FlagEffect::UnsignedChar},

    // Every standard that has no row of its own.
    {"std=", FlagKind::Keep, FlagEffect::UnknownStandard},

    // What the driver does with the sources. To preprocess wins over to compile.
    {"c", FlagKind::Keep, FlagEffect::StopsBeforeLinking},
    {"compile", FlagKind::Drop, FlagEffect::StopsBeforeLinking},
    {"S", FlagKind::Keep, FlagEffect::StopsBeforeLinking},
    {"assemble", FlagKind::Drop, FlagEffect::StopsBeforeLinking},
    {"preprocess", FlagKind::Drop, FlagEffect::PreprocessesOnly},
    {"M", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"dependencies", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"user-dependencies", FlagKind::Drop, FlagEffect::ListsDependencies},
    {"emit-pch", FlagKind::Drop, FlagEffect::MakesPrecompiledHeader},
    {"analyze", FlagKind::Drop},

    // Information instead of work.
    {"###", FlagKind::NoCompilation},
    {"version", FlagKind::NoCompilation},
    {"help", FlagKind::NoCompilation},
    {"help=", FlagKind::NoCompilation},
    {"help-hidden", FlagKind::NoCompilation},
    {"target-help", FlagKind::NoCompilation},
    {"dumpversion", FlagKind::NoCompilation},
    {"dumpfullversion", FlagKind::NoCompilation},
    {"dumpmachine", FlagKind::NoCompilation},
    {"dumpspecs", FlagKind::NoCompilation},
    {"print-effective-triple", FlagKind::NoCompilation},
    {"print-file-name=", FlagKind::NoCompilation},
    {"print-libgcc-file-name", FlagKind::NoCompilation},
    {"print-multi-directory", FlagKind::NoCompilation},
    {"print-multi-lib", FlagKind::NoCompilation},
    {"print-multi-os-directory", FlagKind::NoCompilation},
    {"print-multiarch", FlagKind::NoCompilation},
    {"print-prog-name=", FlagKind::NoCompilation},
    {"print-resource-dir", FlagKind::NoCompilation},
    {"print-runtime-dir", FlagKind::NoCompilation},
    {"print-search-dirs", FlagKind::NoCompilation},
    {"print-supported-cpus", FlagKind::NoCompilation},
    {"print-sysroot", FlagKind::NoCompilation},
    {"print-sysroot-headers-suffix", FlagKind::NoCompilation},
    {"print-target-triple", FlagKind::NoCompilation},
    {"print-targets", FlagKind::NoCompilation},
    {"v", FlagKind::Drop, FlagEffect::PrintsWithoutInput},
    {"verbose", FlagKind::Drop, FlagEffect::PrintsWithoutInput},

    // What would change the preprocessed text, or leave out its line markers.
    {"C", FlagKind::Drop},
    {"CC", FlagKind::Drop},
    {"comments", FlagKind::Drop},
    {"P", FlagKind::Drop},
    {"no-line-commands", FlagKind::Drop},
    {"dI", FlagKind::Drop},
    {"dN", FlagKind::Drop},
    {"dU", FlagKind::Drop},
    {"fdirectives-only", FlagKind::Drop},
    {"fdebug-cpp", FlagKind::Drop},
    {"fminimize-whitespace", FlagKind::Drop},
    {"frewrite-imports", FlagKind::Drop},
    {"frewrite-includes", FlagKind::Drop},
    {"fpch-preprocess", FlagKind::Drop},
    // Kept: where nothing else includes the header that it was made from, all of the header's macros would be missing.
    {"include-pch", FlagKind::KeepWithValue, FlagEffect::NamesPrecompiled, FlagFile::Read},

    // What would write files of the build again, or fill the error output.
    {"H", FlagKind::Drop},
    {"trace-includes", FlagKind::Drop},
    {"MG", FlagKind::Drop, FlagFile::AboutWritten},
    {"MV", FlagKind::Drop, FlagFile::AboutWritten},
    // A piece of a compilation database.
    {"MJ", FlagKind::DropWithValue, FlagFile::Written},
    {"write-dependencies", FlagKind::Drop, FlagFile::Written},
    {"write-user-dependencies", FlagKind::Drop, FlagFile::Written},
    {"print-missing-file-dependencies", FlagKind::Drop, FlagFile::AboutWritten},
    {"dependency-dot", FlagKind::DropWithValue, FlagFile::Written},
    {"dependency-file", FlagKind::DropWithValue, FlagFile::Written},
    {"header-include-file", FlagKind::DropWithValue, FlagFile::Written},
    {"fdeps-file=", FlagKind::Drop, FlagFile::Written},
    {"fdeps-format=", FlagKind::Drop, FlagFile::AboutWritten},
    {"fdeps-target=", FlagKind::Drop, FlagFile::AboutWritten},
    {"fdiagnostics-add-output=", FlagKind::Drop, FlagFile::Written},
    {"fdiagnostics-format=", FlagKind::Drop},
    {"fdiagnostics-set-output=", FlagKind::Drop, FlagFile::Written},
    {"ftime-report", FlagKind::Drop},
    {"ftime-trace", FlagKind::Drop, FlagFile::Written},
    {"ftime-trace=", FlagKind::Drop, FlagFile::Written},
    {"save-temps", FlagKind::Drop, FlagFile::Written},
    {"save-temps=", FlagKind::Drop, FlagFile::Written},
    {"aux-info", FlagKind::DropWithValue, FlagFile::Written},
    {"index-store-path", FlagKind::DropWithValue, FlagFile::Written},
    {"index-unit-output-path", FlagKind::DropWithValue, FlagFile::Written},
    {"serialize-diagnostics", FlagKind::DropWithValue, FlagFile::Written},
    {"serialize-diagnostic-file", FlagKind::DropWithValue, FlagFile::Written},
    // Would run every step under another program.
    {"wrapper", FlagKind::DropWithValue},
    {"Hd", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"Hf", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"Xf", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"d", FlagKind::Keep, FlagValue::ShortGlued},
    {"dump", FlagKind::DropWithValue, FlagValue::Long, FlagFile::Written},
    // A file for each pass that its name goes on to say.
    {"fdump-", FlagKind::Drop, FlagValue::Glued, FlagFile::Written},
    {"gen-cdb-fragment-path", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"module-dependency-dir", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"save-stats", FlagKind::Drop, FlagFile::Written},
    {"save-stats=", FlagKind::Drop, FlagFile::Written},
    {"stats-file=", FlagKind::Drop, FlagFile::Written},
    {"diagnostic-log-file", FlagKind::DropWithValue, FlagValue::Next, FlagFile::Written},
    {"info-output-file=", FlagKind::Drop, FlagFile::Written}, // behind -mllvm
    {"time", FlagKind::Drop},
    {"time=", FlagKind::Drop, FlagFile::Written},
    {"fproc-stat-report", FlagKind::Drop},
    {"fproc-stat-report=", FlagKind::Drop, FlagFile::Written},
    {"fcallgraph-info", FlagKind::Drop, FlagFile::Written},
    {"fcallgraph-info=", FlagKind::Drop, FlagFile::Written},
    {"fstack-usage", FlagKind::Drop, FlagFile::Written},
    {"foptimization-record-file=", FlagKind::Drop, FlagFile::Written},
    {"fsave-optimization-record", FlagKind::Drop, FlagFile::Written},
    {"fsave-optimization-record=", FlagKind::Drop, FlagFile::Written},
    {"freport-bug", FlagKind::Drop, FlagFile::Written},
    {"fcrash-diagnostics-dir=", FlagKind::Drop},

    // More ways to name folders, files and macros.
    {"iquote", FlagKind::UserInclude},
    {"include-directory", FlagKind::UserInclude},
    {"include-directory=", FlagKind::UserInclude},
    {"sysroot", FlagKind::SystemInclude},
    {"include-directory-after", FlagKind::SystemInclude},
    {"include-directory-after=", FlagKind::SystemInclude},
    {"cxx-isystem", FlagKind::SystemInclude},
    {"iframework", FlagKind::SystemInclude},
    {"isystem-after", FlagKind::SystemInclude},
    {"iwithsysroot", FlagKind::SystemInclude},
    {"internal-isystem", FlagKind::SystemInclude},
    {"internal-externc-isystem", FlagKind::SystemInclude},
    {"include=", FlagKind::ForcedInclude},
    {"define-macro", FlagKind::Define},
    {"define-macro=", FlagKind::Define},
    {"U", FlagKind::Undefine},
    {"undefine-macro", FlagKind::Undefine},
    {"undefine-macro=", FlagKind::Undefine},
    {"language", FlagKind::Language},
    {"language=", FlagKind::Language},
    {"output", FlagKind::Output},
    {"output=", FlagKind::Output},
    {"Xpreprocessor", FlagKind::Preprocessor, FlagValue::Next},
    {"Xclang", FlagKind::Preprocessor, FlagValue::Next},

    // What has a value of its own, which is no input. Most of it is for the linker and harmless.
    {"A", FlagKind::KeepWithValue},
    // Programs and specs are looked for there first.
    {"B", FlagKind::KeepWithValue, FlagEffect::NamesSearchPrefix},
    {"prefix", FlagKind::KeepWithValue, FlagValue::Long, FlagEffect::NamesSearchPrefix},
    {"F", FlagKind::KeepWithValue},
    {"G", FlagKind::KeepWithValue},
    {"L", FlagKind::KeepWithValue},
    {"T", FlagKind::KeepWithValue},
    // Without rows of their own these would be "T" with a glued value, and the word behind them a file.
    {"Tbss", FlagKind::KeepWithValue},
    {"Tdata", FlagKind::KeepWithValue},
    {"Ttext", FlagKind::KeepWithValue},
    {"Xanalyzer", FlagKind::KeepWithValue},
    {"Xassembler", FlagKind::KeepWithValue},
    {"Xcuda-fatbinary", FlagKind::KeepWithValue},
    {"Xcuda-ptxas", FlagKind::KeepWithValue},
    {"Xlinker", FlagKind::KeepWithValue},
    {"Xopenmp-target", FlagKind::KeepWithValue},
    {"arch", FlagKind::KeepWithValue},
    {"bundle_loader", FlagKind::KeepWithValue},
    {"compatibility_version", FlagKind::KeepWithValue},
    {"current_version", FlagKind::KeepWithValue},
    {"config", FlagKind::KeepWithValue, FlagValue::Next, FlagFile::Read},
    {"config=", FlagKind::Keep, FlagFile::Read},
    {"dumpbase", FlagKind::KeepWithValue},
    {"dumpbase-ext", FlagKind::KeepWithValue},
    {"dumpdir", FlagKind::KeepWithValue},
    {"e", FlagKind::KeepWithValue},
    {"entry", FlagKind::KeepWithValue},
    {"fmodule-file=", FlagKind::Keep, FlagFile::Read},
    {"fmodule-map-file=", FlagKind::Keep, FlagFile::Read},
    {"fmodule-mapper=", FlagKind::Keep, FlagFile::Read},
    {"fplugin=", FlagKind::Keep, FlagFile::Read},
    {"framework", FlagKind::KeepWithValue},
    {"gcc-toolchain", FlagKind::KeepWithValue},
    // Its macros count and its text does not: it is no forced include.
    {"imacros", FlagKind::KeepWithValue, FlagFile::Read},
    {"imultiarch", FlagKind::KeepWithValue},
    {"imultilib", FlagKind::KeepWithValue},
    {"include-prefix", FlagKind::KeepWithValue},
    {"include-with-prefix", FlagKind::KeepWithValue},
    {"install_name", FlagKind::KeepWithValue},
    {"iprefix", FlagKind::KeepWithValue},
    {"ivfsoverlay", FlagKind::KeepWithValue, FlagFile::Read},
    {"iwithprefix", FlagKind::KeepWithValue},
    {"iwithprefixbefore", FlagKind::KeepWithValue},
    {"l", FlagKind::KeepWithValue},
    {"library-directory", FlagKind::KeepWithValue},
    // Hands on options of the code generator, some of which write files.
    {"mllvm", FlagKind::Preprocessor, FlagValue::Next},
    {"param", FlagKind::KeepWithValue},
    {"resource-dir", FlagKind::KeepWithValue},
    {"rpath", FlagKind::KeepWithValue},
    {"specs", FlagKind::KeepWithValue, FlagFile::ReadAsSpecs},
    {"specs=", FlagKind::Keep, FlagFile::ReadAsSpecs},
    {"target", FlagKind::KeepWithValue, FlagEffect::NamesTarget},
    {"target=", FlagKind::Keep, FlagEffect::NamesTarget},
    {"u", FlagKind::KeepWithValue},
    {"undefined", FlagKind::KeepWithValue},
    {"weak_framework", FlagKind::KeepWithValue},
    // The unit is taken to work there.
    {"working-directory", FlagKind::DropWithValue, FlagEffect::NamesDirectory},
    {"working-directory=", FlagKind::Drop, FlagEffect::NamesDirectory},
    {"z", FlagKind::KeepWithValue},

    // What has its value in the next word, and never glued. Most of it is for other steps than preprocessing.
    {"allowable_client", FlagKind::KeepWithValue, FlagValue::Next},
    {"arcmt-migrate-report-output", FlagKind::KeepWithValue, FlagValue::Next},
    {"ccc-arcmt-migrate", FlagKind::KeepWithValue, FlagValue::Next},
    {"ccc-gcc-name", FlagKind::KeepWithValue, FlagValue::Next},
    {"ccc-install-dir", FlagKind::KeepWithValue, FlagValue::Next},
    {"ccc-objcmt-migrate", FlagKind::KeepWithValue, FlagValue::Next},
    {"client_name", FlagKind::KeepWithValue, FlagValue::Next},
    {"darwin-target-variant", FlagKind::KeepWithValue, FlagValue::Next},
    {"dyld-prefix", FlagKind::KeepWithValue, FlagValue::Next},
    {"dylib_file", FlagKind::KeepWithValue, FlagValue::Next},
    {"exported_symbols_list", FlagKind::KeepWithValue, FlagValue::Next},
    {"filelist", FlagKind::KeepWithValue, FlagValue::Next},
    {"fintrinsic-modules-path", FlagKind::KeepWithValue, FlagValue::Next},
    {"fmodules-user-build-path", FlagKind::KeepWithValue, FlagValue::Next},
    {"for-assembler", FlagKind::KeepWithValue, FlagValue::Next},
    {"for-linker", FlagKind::KeepWithValue, FlagValue::Next},
    {"force-link", FlagKind::KeepWithValue, FlagValue::Next},
    {"force_load", FlagKind::KeepWithValue, FlagValue::Next},
    {"gnatO", FlagKind::KeepWithValue, FlagValue::Next},
    {"iframeworkwithsysroot", FlagKind::KeepWithValue, FlagValue::Next},
    {"image_base", FlagKind::KeepWithValue, FlagValue::Next},
    {"include-with-prefix-after", FlagKind::KeepWithValue, FlagValue::Next},
    {"include-with-prefix-before", FlagKind::KeepWithValue, FlagValue::Next},
    {"init", FlagKind::KeepWithValue, FlagValue::Next},
    {"keep_private_extern", FlagKind::KeepWithValue, FlagValue::Next},
    {"lazy_framework", FlagKind::KeepWithValue, FlagValue::Next},
    {"lazy_library", FlagKind::KeepWithValue, FlagValue::Next},
    {"meabi", FlagKind::KeepWithValue, FlagValue::Next},
    {"mhwdiv", FlagKind::KeepWithValue, FlagValue::Next},
    {"mthread-model", FlagKind::KeepWithValue, FlagValue::Next},
    {"multiply_defined", FlagKind::KeepWithValue, FlagValue::Next},
    {"multiply_defined_unused", FlagKind::KeepWithValue, FlagValue::Next},
    {"pagezero_size", FlagKind::KeepWithValue, FlagValue::Next},
    {"read_only_relocs", FlagKind::KeepWithValue, FlagValue::Next},
    {"reexport_framework", FlagKind::KeepWithValue, FlagValue::Next},
    {"reexport_library", FlagKind::KeepWithValue, FlagValue::Next},
    {"rtlib", FlagKind::KeepWithValue, FlagValue::Next},
    {"seg1addr", FlagKind::KeepWithValue, FlagValue::Next},
    {"seg_addr_table", FlagKind::KeepWithValue, FlagValue::Next},
    {"seg_addr_table_filename", FlagKind::KeepWithValue, FlagValue::Next},
    {"segs_read_only_addr", FlagKind::KeepWithValue, FlagValue::Next},
    {"segs_read_write_addr", FlagKind::KeepWithValue, FlagValue::Next},
    {"stdlib", FlagKind::KeepWithValue, FlagValue::Next},
    {"sub_library", FlagKind::KeepWithValue, FlagValue::Next},
    {"sub_umbrella", FlagKind::KeepWithValue, FlagValue::Next},
    {"umbrella", FlagKind::KeepWithValue, FlagValue::Next},
    {"unexported_symbols_list", FlagKind::KeepWithValue, FlagValue::Next},
    {"weak_library", FlagKind::KeepWithValue, FlagValue::Next},
    {"weak_reference_mismatches", FlagKind::KeepWithValue, FlagValue::Next},
    {"encoding", FlagKind::KeepWithValue, FlagValue::Next},
    {"classpath", FlagKind::KeepWithValue, FlagValue::Next},
    {"bootclasspath", FlagKind::KeepWithValue, FlagValue::Next},
    {"CLASSPATH", FlagKind::KeepWithValue, FlagValue::Next},
    {"extdirs", FlagKind::KeepWithValue, FlagValue::Next},
    {"output-class-directory", FlagKind::KeepWithValue, FlagValue::Next},
    {"resource", FlagKind::KeepWithValue, FlagValue::Next},
    {"Xarch_device", FlagKind::KeepWithValue, FlagValue::Next},
    {"Xarch_host", FlagKind::KeepWithValue, FlagValue::Next},
    {"analyzer-output", FlagKind::KeepWithValue, FlagValue::Next},
    {"dsym-dir", FlagKind::KeepWithValue, FlagValue::Next},
    // For Apple's linker, with several values each.
    {"segaddr", FlagKind::KeepWithValue, FlagValue::NextTwo},
    {"sectobjectsymbols", FlagKind::KeepWithValue, FlagValue::NextTwo},
    {"sectcreate", FlagKind::KeepWithValue, FlagValue::NextThree},
    {"segcreate", FlagKind::KeepWithValue, FlagValue::NextThree},
    {"sectalign", FlagKind::KeepWithValue, FlagValue::NextThree},
    {"sectorder", FlagKind::KeepWithValue, FlagValue::NextThree},
    {"segprot", FlagKind::KeepWithValue, FlagValue::NextThree},
    {"platform_version", FlagKind::KeepWithValue, FlagValue::NextThree},
    // Their value may stand in the next argument, though the names end in "=".
    {"fxray-always-instrument=", FlagKind::KeepWithValue, FlagValue::GluedOrNext},
    {"fxray-attr-list=", FlagKind::KeepWithValue, FlagValue::GluedOrNext},
    {"fxray-instruction-threshold=", FlagKind::KeepWithValue, FlagValue::GluedOrNext},
    {"fxray-instrumentation-bundle=", FlagKind::KeepWithValue, FlagValue::GluedOrNext},
    {"fxray-modes=", FlagKind::KeepWithValue, FlagValue::GluedOrNext},
    {"fxray-never-instrument=", FlagKind::KeepWithValue, FlagValue::GluedOrNext},
    // A target is glued to it, for which alone the next argument is meant.
    {"Xarch_", FlagKind::KeepWithValue, FlagValue::GluedAndNext},
    {"Xopenmp-target=", FlagKind::KeepWithValue, FlagValue::GluedAndNext},
    {"J", FlagKind::KeepWithValue},
    {"b", FlagKind::KeepWithValue},
    {"assert", FlagKind::KeepWithValue, FlagValue::Next},
    // Long forms of "std=" and "m". What they mean is told by the row of the flag that the value names.
    {"std", FlagKind::KeepWithValue, FlagValue::Next, FlagEffect::NamesStandard},
    {"machine", FlagKind::KeepWithValue, FlagValue::Next, FlagEffect::NamesMachine},
    {"machine=", FlagKind::Keep, FlagEffect::NamesMachine},
    {"stdlib++-isystem", FlagKind::SystemInclude},

    // Every other flag that begins so has its value glued, if any: a word behind it is no value.
    {"f", FlagKind::Keep, FlagValue::ShortGlued},
    {"m", FlagKind::Keep, FlagValue::ShortGlued},
    {"W", FlagKind::Keep, FlagValue::ShortGlued},
    {"g", FlagKind::Keep, FlagValue::ShortGlued},
    {"O0", FlagKind::Keep},
    {"Oz", FlagKind::Keep},
    {"R", FlagKind::Keep, FlagValue::ShortGlued},
    {"p", FlagKind::Keep, FlagValue::ShortGlued},
    {"n", FlagKind::Keep, FlagValue::ShortGlued},
    {"s", FlagKind::Keep, FlagValue::ShortGlued},
    {"r", FlagKind::Keep, FlagValue::ShortGlued},
    {"Q", FlagKind::Keep, FlagValue::ShortGlued},
    {"t", FlagKind::Keep, FlagValue::ShortGlued},
    {"w", FlagKind::Keep},
    {"ObjC", FlagKind::Keep},
    {"ObjC++", FlagKind::Keep},
    // Kept like what has no row. With one, the word behind them can't be taken for a value.
    {"coverage", FlagKind::Keep},
    {"undef", FlagKind::Keep},
    {"pipe", FlagKind::Keep},
};
// clang-format on
static_assert(RowsAreSound(GccFlags), "a name stands twice, or a flag is kept that makes the compiler write a file");

// For families in which the last of the four flags for plain char decides.
constexpr FlagRow LastCharFlags[] = {
    {"fsigned-char", FlagKind::Keep, FlagEffect::SignedChar},
    {"fno-unsigned-char", FlagKind::Keep, FlagEffect::SignedChar},
    {"fno-signed-char", FlagKind::Keep, FlagEffect::UnsignedChar},
};

} // namespace

Gcc::Gcc() : Gcc(CompilerType::Gcc, "gcc", {}, CharSign::UnsignedByFlag) {}

Gcc::Gcc(CompilerType type, std::string_view name, std::span<const FlagRow> extension, CharSign charSign)
    : Compiler(type, name, GccIntroducers,
               FlagTable({extension,
                          charSign == CharSign::ByLastFlag ? std::span<const FlagRow>(LastCharFlags)
                                                           : std::span<const FlagRow>(),
                          GccFlags})) {}

std::vector<std::string> Gcc::BuildPreprocessCommand(const ParsedCommand& command,
                                                     const std::string& outputPath) const {
    std::vector<std::string> words = BeginPreprocessCommand(command, 5);
    words.emplace_back("-w");
    words.emplace_back(StageFlag());
    words.emplace_back("-o");
    words.push_back(outputPath);
    words.push_back(WithFolder(command.sourceFile));
    return words;
}

void Gcc::FinishParse(ParsedCommand& command) const {
    if (command.targetBits) {
        command.platformWord = *command.targetBits == TargetBits::Bits32 ? "linux32" : "linux64";
    }
}

// Drivers skip the preprocessing of a file that is preprocessed already, and write no output then. Taken for a plain
// source, it comes out as it is.
void Gcc::StateKindOfSource(InputKind kind, ParsedCommand& command) const {
    if (IsPreprocessed(kind)) {
        command.keptArguments.emplace_back("-x");
        command.keptArguments.emplace_back(command.language == Language::C ? "c" : "c++");
    }
}

} // namespace Orvanta
