// Guards against a firmware project that is built by a real cross compiler and whose errors are not found, or found
// elsewhere.

#include "e2e/support/SandboxTest.h"
#include "platform/Executable.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace Orvanta {

namespace {

constexpr const char* LinkerScript = "ENTRY(Reset_Handler)\n"
                                     "MEMORY {\n"
                                     "    FLASH (rx) : ORIGIN = 0x08000000, LENGTH = 64K\n"
                                     "    RAM (rwx) : ORIGIN = 0x20000000, LENGTH = 8K\n"
                                     "}\n"
                                     "SECTIONS {\n"
                                     "    .isr_vector : { KEEP(*(.isr_vector)) } > FLASH\n"
                                     "    .text : { *(.text*) *(.rodata*) } > FLASH\n"
                                     "    .data : { *(.data*) } > RAM AT > FLASH\n"
                                     "    .bss : { *(.bss*) *(COMMON) } > RAM\n"
                                     "    _stack_top = ORIGIN(RAM) + LENGTH(RAM);\n"
                                     "    /DISCARD/ : { *(.ARM.*) }\n"
                                     "}\n";
constexpr const char* Startup =
    "extern unsigned _stack_top;\n"
    "int main(void);\n"
    "void Reset_Handler(void);\n"
    "void Reset_Handler(void) {\n"
    "    (void)main();\n"
    "    for (;;) {\n"
    "    }\n"
    "}\n"
    "__attribute__((section(\".isr_vector\"), used)) static const void* const vectors[] = {\n"
    "    &_stack_top, (const void*)Reset_Handler};\n";
constexpr const char* Registers = "#pragma once\n"
                                  "#include <stdint.h>\n"
                                  "#define GPIO ((volatile uint32_t*)0x40020000u)\n"
                                  "static inline uint32_t Pin(unsigned number) {\n"
                                  "    const uint8_t pins[4] = {1, 2, 4, 8};\n"
                                  "    (void)number;\n"
                                  "    return pins[4];\n"
                                  "}\n";
constexpr const char* Main = "#include \"registers.h\"\n"
                             "#include <string.h>\n"
                             "#ifndef __arm__\n"
                             "#error \"this is not the compiler of the build\"\n"
                             "#endif\n"
                             "int main(void) {\n"
                             "    char text[8];\n"
                             "    memset(text, 0, sizeof text);\n"
                             "    text[8] = BOARD;\n"
                             "    *GPIO = Pin((unsigned)text[0]);\n"
                             "    return 0;\n"
                             "}\n";
constexpr const char* Driver = "#include \"registers.h\"\n"
                               "#include <array>\n"
                               "int Sum() {\n"
                               "    int values[2] = {1, 2};\n"
                               "    return values[2] + static_cast<int>(std::array<int, 2>{}.size());\n"
                               "}\n";

class FirmwareTest : public SandboxTest {
protected:
    FirmwareTest() {
        sandbox.Write("firmware.ld", LinkerScript);
        sandbox.Write("src/startup.c", Startup);
        sandbox.Write("src/registers.h", Registers);
        sandbox.Write("src/main.c", Main);
    }

    /// Adds the commands that build the firmware; they do build it.
    void Build(const std::string& compiler) {
        const Arguments common = {compiler, "-mcpu=cortex-m4", "-mthumb", "-mfloat-abi=soft", "-ffunction-sections"};
        const Arguments commands[] = {
            {"-std=c11", "-Os", "-g3", "-DBOARD=7", "-MMD", "-MF", "main.d", "-c", "src/main.c", "-o", "main.o"},
            {"-fsigned-char", "-c", "src/startup.c", "-o", "startup.o"},
            {"-nostartfiles", "--specs=nosys.specs", "-T", "firmware.ld", "-Wl,-Map,firmware.map", "main.o",
             "startup.o", "-o", "firmware.elf"},
        };
        for (const Arguments& words : commands) {
            Entry entry{common};
            entry.arguments.insert(entry.arguments.end(), words.begin(), words.end());
            const std::string line = "cd '" + sandbox.Path() + "' && " + CommandLineText(entry.arguments) + " 2>>log";
            ASSERT_EQ(std::system(line.c_str()), 0) << sandbox.Read("log");
            sandbox.AddEntry(std::move(entry));
        }
    }

    void ExpectOverrunAt(const std::string& file, unsigned line) const {
        const std::vector<Finding> findings = Report();
        EXPECT_EQ(std::count_if(findings.begin(), findings.end(),
                                [&](const Finding& finding) {
                                    return finding.file == sandbox.Path(file) && finding.line == line &&
                                           finding.message.find("[arrayIndexOutOfBounds]") != std::string::npos;
                                }),
                  1)
            << file << ':' << line;
    }
};

// Debian's compiler does not call itself by the words of the processor's maker, and counts as a GCC.
TEST_F(FirmwareTest, BundledCoreFindsTheErrorsOfARealProject) {
    Build(FindExecutable("arm-none-eabi-gcc"));
    sandbox.Write("src/driver.cpp", Driver);
    const std::string headers = sandbox.Path("include");
    sandbox.Write("include/array", "namespace std { template <class T, unsigned N> struct array {\n"
                                   "T values[N]; unsigned size() const { return N; } }; }\n");
    sandbox.AddEntry({{"arm-none-eabi-gcc", "-mcpu=cortex-m4", "-mthumb", "-std=c++17", "-isystem", headers,
                       "-fno-rtti", "-c", "src/driver.cpp", "-o", "driver.o"}});
    sandbox.WriteDatabase();
    const RunResult result = sandbox.Run({"analyze", "-o", "report.json", "--verbose"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("arm-none-eabi-gcc' is GCC\n")) << result;
    EXPECT_TRUE(result.Says("arm-none-eabi-gcc' is arm-none-eabi, for the core arm; its own plain char is unsigned"))
        << result;
    EXPECT_TRUE(result.Says("link only")) << result;
    ExpectOverrunAt("src/main.c", 9);
    ExpectOverrunAt("src/registers.h", 7);
    ExpectOverrunAt("src/driver.cpp", 5);
    EXPECT_TRUE(sandbox.Leftovers().empty());
}

TEST_F(FirmwareTest, CompilerOfTheProcessorsMakerIsKnownByItsVersion) {
    sandbox.Write("tools/arm-none-eabi-gcc", "#!/bin/sh\n"
                                             "if [ \"$1\" = --version ]; then\n"
                                             "    echo 'arm-none-eabi-gcc (GNU Arm Embedded Toolchain 10.3) 10.3.1'\n"
                                             "    exit 0\n"
                                             "fi\n"
                                             "exec '" +
                                                 FindExecutable("arm-none-eabi-gcc") + "' \"$@\"\n");
    const std::string compiler = sandbox.Path("tools/arm-none-eabi-gcc");
    std::filesystem::permissions(compiler, std::filesystem::perms::owner_all);
    Build(compiler);
    const RunResult result = sandbox.Analyze({"--verbose"});
    EXPECT_EQ(result.exitCode, 0) << result;
    EXPECT_TRUE(result.Says("arm-none-eabi-gcc' is GCC for ARM\n")) << result;
    const std::vector<CoreCall> calls = sandbox.CoreCalls();
    ASSERT_EQ(calls.size(), 2U) << result;
    EXPECT_EQ(calls[0].Setting("funsigned-char"), "yes");
    EXPECT_EQ(calls[0].Setting("std"), "c11");
    EXPECT_EQ(calls[1].Setting("funsigned-char"), "no");
    EXPECT_EQ(calls[1].Setting("std"), "c17");
    for (const CoreCall& call : calls) {
        EXPECT_EQ(call.Setting("platform"), "arm");
        EXPECT_EQ(call.Setting("preprocessor"), "gcc");
    }
    EXPECT_NE(calls[0].preprocessed.find("text[8] = 7;"), std::string::npos);
}

} // namespace

} // namespace Orvanta
