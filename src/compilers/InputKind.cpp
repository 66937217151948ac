#include "compilers/InputKind.h"

#include "platform/Paths.h"
#include "platform/Table.h"
#include "platform/Text.h"

#include <algorithm>
#include <string>

namespace Orvanta {

namespace {

struct InputKindRow {
    std::string_view name;
    InputKind kind;
};

// The commonest first; every other extension is a file for the linker.
constexpr InputKindRow Extensions[] = {
    {".c", InputKind::C},
    {".cpp", InputKind::Cpp},
    {".cc", InputKind::Cpp},
    {".cxx", InputKind::Cpp},
    {".C", InputKind::Cpp},
    {".cp", InputKind::Cpp},
    {".c++", InputKind::Cpp},
    {".CC", InputKind::Cpp},
    {".CPP", InputKind::Cpp},
    {".CXX", InputKind::Cpp},
    // Units of modules are compiled like other sources.
    {".cppm", InputKind::Cpp},
    {".ixx", InputKind::Cpp},
    {".mpp", InputKind::Cpp},
    {".ccm", InputKind::Cpp},
    {".cxxm", InputKind::Cpp},
    {".c++m", InputKind::Cpp},
    {".i", InputKind::PreprocessedC},
    {".ii", InputKind::PreprocessedCpp},
    {".h", InputKind::Header},
    {".H", InputKind::Header},
    {".hh", InputKind::Header},
    {".hp", InputKind::Header},
    {".hpp", InputKind::Header},
    {".HPP", InputKind::Header},
    {".hxx", InputKind::Header},
    {".h++", InputKind::Header},
    {".tcc", InputKind::Header},
    {".s", InputKind::Assembly},
    {".S", InputKind::Assembly},
    {".sx", InputKind::Assembly},
    {".asm", InputKind::Assembly},
    {".m", InputKind::OtherLanguage},
    {".mi", InputKind::OtherLanguage},
    {".mm", InputKind::OtherLanguage},
    {".mii", InputKind::OtherLanguage},
    {".M", InputKind::OtherLanguage},
    {".cu", InputKind::OtherLanguage},
    {".hip", InputKind::OtherLanguage},
    {".cl", InputKind::OtherLanguage},
    {".f", InputKind::OtherLanguage},
    {".for", InputKind::OtherLanguage},
    {".ftn", InputKind::OtherLanguage},
    {".fpp", InputKind::OtherLanguage},
    {".F", InputKind::OtherLanguage},
    {".f90", InputKind::OtherLanguage},
    {".F90", InputKind::OtherLanguage},
    {".f95", InputKind::OtherLanguage},
    {".F95", InputKind::OtherLanguage},
    {".f03", InputKind::OtherLanguage},
    {".f08", InputKind::OtherLanguage},
    {".adb", InputKind::OtherLanguage},
    {".ads", InputKind::OtherLanguage},
    {".d", InputKind::OtherLanguage},
    {".go", InputKind::OtherLanguage},
    {".rs", InputKind::OtherLanguage},
};

// As "-x" takes them. Words for languages that are not analyzed stand here as well: a file behind one is no C.
constexpr InputKindRow LanguageWords[] = {
    {"c", InputKind::C},
    {"c++", InputKind::Cpp},
    {"c++-module", InputKind::Cpp},
    {"cpp-output", InputKind::PreprocessedC},
    {"c++-cpp-output", InputKind::PreprocessedCpp},
    {"c-header", InputKind::Header},
    {"c-system-header", InputKind::Header},
    {"c-user-header", InputKind::Header},
    {"c++-header", InputKind::Header},
    {"c++-system-header", InputKind::Header},
    {"c++-user-header", InputKind::Header},
    {"assembler", InputKind::Assembly},
    {"assembler-with-cpp", InputKind::Assembly},
    {"ada", InputKind::OtherLanguage},
    {"cl", InputKind::OtherLanguage},
    {"cuda", InputKind::OtherLanguage},
    {"d", InputKind::OtherLanguage},
    {"f77", InputKind::OtherLanguage},
    {"f77-cpp-input", InputKind::OtherLanguage},
    {"f95", InputKind::OtherLanguage},
    {"f95-cpp-input", InputKind::OtherLanguage},
    {"go", InputKind::OtherLanguage},
    {"hip", InputKind::OtherLanguage},
    {"ir", InputKind::OtherLanguage},
    {"objective-c", InputKind::OtherLanguage},
    {"objective-c-header", InputKind::OtherLanguage},
    {"objective-c++", InputKind::OtherLanguage},
    {"objective-c++-header", InputKind::OtherLanguage},
    {"objc-cpp-output", InputKind::OtherLanguage},
    {"objective-c-cpp-output", InputKind::OtherLanguage},
};

// Even a flag that makes a source of every file leaves these to the linker.
constexpr std::string_view WindowsLinkerExtensions[] = {".obj", ".lib", ".res", ".def", ".exp", ".dll", ".pdb"};

// In the order of the rows: nearly all inputs of a build are found in the first few.
InputKind KindOfExtension(std::string_view extension) noexcept {
    const InputKindRow* const row = FindRow(Extensions, &InputKindRow::name, extension);
    return row != nullptr ? row->kind : InputKind::LinkInput;
}

} // namespace

InputKind InputKindByExtension(std::string_view path) noexcept {
    return KindOfExtension(ExtensionOf(path));
}

// Rows in upper case are never met here: ".C" is ".c".
InputKind InputKindByWindowsExtension(std::string_view path) {
    return KindOfExtension(ToLowerAscii(ExtensionOf(path)));
}

bool IsWindowsLinkerFile(std::string_view path) noexcept {
    const std::string_view extension = ExtensionOf(path);
    return std::any_of(std::begin(WindowsLinkerExtensions), std::end(WindowsLinkerExtensions),
                       [extension](std::string_view name) { return EqualsIgnoringCase(extension, name); });
}

std::optional<InputKind> InputKindByLanguageWord(std::string_view word) noexcept {
    const InputKindRow* const row = FindRow(LanguageWords, &InputKindRow::name, word);
    return row != nullptr ? std::optional(row->kind) : std::nullopt;
}

std::optional<InputKind> KindNamedBy(FlagEffect effect) noexcept {
    if (effect == FlagEffect::NamesC) {
        return InputKind::C;
    }
    if (effect == FlagEffect::NamesCpp) {
        return InputKind::Cpp;
    }
    return effect == FlagEffect::NamesAssembly ? std::optional<InputKind>(InputKind::Assembly) : std::nullopt;
}

} // namespace Orvanta
