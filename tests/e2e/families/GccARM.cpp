#include "e2e/families/Family.h"

namespace Orvanta {

namespace {

// clang-format off
const UnitRow Rows[] = {
    // STM32CubeIDE
    {"arm-none-eabi-gcc <../Core/Src/main.c> -mcpu=cortex-m4 -std=gnu11 {-g3} -DUSE_HAL_DRIVER -DSTM32F407xx -c "
     "-I../Core/Inc -I../Drivers/CMSIS/Include -O0 -ffunction-sections -fdata-sections -Wall {-fstack-usage -MMD -MP "
     "-MF main.d -MT main.o} --specs=nano.specs -mfpu=fpv4-sp-d16 -mfloat-abi=hard -mthumb {-o main.o}",
     "C", "c11", "unsigned", "../Core/Inc|../Drivers/CMSIS/Include", "USE_HAL_DRIVER|STM32F407xx"},
    // CMake with a toolchain file
    {"arm-none-eabi-gcc -DAPP -I%/inc -isystem %/cmsis -mcpu=cortex-m0plus -mthumb -fdata-sections {-Os} -DNDEBUG "
     "-std=gnu99 {-MD -MT a.o -MF a.o.d -o a.o} -c <%/src/a.c>",
     "C", "c99", "unsigned", "%/inc|%/cmsis", "APP|NDEBUG"},
    {"arm-none-eabi-g++ -std=c++17 -fno-exceptions -fno-rtti -fno-threadsafe-statics -mcpu=cortex-m7 -mthumb -c "
     "<a.cpp> {-o a.o}",
     "C++", "c++17", "unsigned", "", ""},
    // PlatformIO
    {"arm-none-eabi-g++ {-o .pio/a.o} -c -std=gnu++14 -fno-use-cxa-atexit {-Os} -mthumb -fsingle-precision-constant "
     "-DF_CPU=72000000L -DARDUINO=10808 -I%/framework <src/a.cpp>",
     "C++", "c++14", "unsigned", "%/framework", "F_CPU=72000000L|ARDUINO=10808"},
    {"arm-none-eabi-gcc -mcpu=cortex-r5 -fsigned-char -c <a.c>", "C", "c17", "signed", "", ""},
    // The last flag counts
    {"arm-none-eabi-gcc -fsigned-char -funsigned-char -std=c11 -c <a.c>", "C", "c11", "unsigned", "", ""},
    {"arm-none-eabi-gcc -fno-unsigned-char -ansi -march=armv7-m -c <a.c>", "C", "c90", "signed", "", ""},
    // MCUXpresso
    {"arm-none-eabi-gcc -std=gnu99 -D__REDLIB__ -DCPU_LPC55S69 -Iinc~dir -O0 -fno-common {-g3} -c -fmessage-length=0 "
     "-fno-builtin -mcpu=cortex-m33 -mthumb {-MMD} {-MP} {-MFa.d} {-MTa.o} {-o a.o} <../a.c>",
     "C", "c99", "unsigned", "inc~dir", "__REDLIB__|CPU_LPC55S69"},
    {"arm-none-eabi-gcc {@options}[-DA -Iinc] -mcpu=cortex-m3 -c <a.c>",
     "C", "c17", "unsigned", "inc", "A", nullptr, "-DA -Iinc"},
    // Compiled and linked
    {"arm-none-eabi-gcc -mcpu=cortex-m3 -mthumb -nostartfiles -T link.ld --specs=nosys.specs -std=c17 <a.c> {-o "
     "a.elf}",
     "C", "c17", "unsigned", "", ""},
};
// clang-format on

} // namespace

Family GccARMFamily() {
    return {
        .name = "gccarm",
        .strict = "arm-gcc",
        .title = "GCC for ARM",
        .version = "arm-none-eabi-gcc (GNU Arm Embedded Toolchain 10.3-2021.10) 10.3.1 20210824 (release)\n",
        .preprocessor = "gcc",
        .platform = "arm",
        .ending = "-w -E -o @ <>",
        .rows = Rows,
    };
}

} // namespace Orvanta
