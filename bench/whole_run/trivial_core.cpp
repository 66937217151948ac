// The cheapest core there can be: reads the unit's settings and finds what SOURCE.findings holds, mostly nothing. Asked
// for the unit's dependencies, it prints what SOURCE.included holds. A source named "slow..." takes it a second, one
// named "takesN..." N milliseconds.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace {

constexpr std::size_t LongestLine = 8192;

/// Copies the value, when the line is that of the key.
void TakeValue(const char* line, const char* key, char* value) {
    const std::size_t size = std::strlen(key);
    if (std::strncmp(line, key, size) == 0) {
        std::snprintf(value, LongestLine, "%s", line + size);
    }
}

/// Copies SOURCE with this ending, which need not be there.
void Copy(const char* source, const char* ending, std::FILE* output) {
    static char path[LongestLine];
    static char block[LongestLine];
    std::snprintf(path, sizeof path, "%s%s", source, ending);
    std::FILE* const input = std::fopen(path, "r");
    if (input == nullptr) {
        return;
    }
    for (std::size_t size = 0; (size = std::fread(block, 1, sizeof block, input)) > 0;) {
        std::fwrite(block, 1, size, output);
    }
    std::fclose(input);
}

} // namespace

int main(int argc, char** argv) {
    static char line[LongestLine];
    static char outputPath[LongestLine];
    static char source[LongestLine];
    const bool isListing = argc > 3 && std::strcmp(argv[3], "--display-dependencies") == 0;
    std::FILE* const settings = argc > 2 ? std::fopen(argv[2], "r") : nullptr;
    if (settings == nullptr) {
        return 1;
    }
    while (std::fgets(line, sizeof line, settings) != nullptr) {
        line[std::strcspn(line, "\n")] = '\0';
        TakeValue(line, "output-file=", outputPath);
        TakeValue(line, "source-file=", source);
    }
    if (isListing) {
        Copy(source, ".included", stdout);
        return 0;
    }
    if (std::strstr(source, "/slow") != nullptr) {
        ::sleep(1);
    }
    if (const char* const name = std::strstr(source, "/takes"); name != nullptr) {
        ::usleep(static_cast<useconds_t>(std::strtoul(name + std::strlen("/takes"), nullptr, 10)) * 1000);
    }
    std::FILE* const output = std::fopen(outputPath, "w");
    if (output == nullptr) {
        return 1;
    }
    Copy(source, ".findings", output);
    return std::fclose(output);
}
