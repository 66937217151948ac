// The cheapest core there can be: reads the unit's settings and finds nothing. Asked for the unit's dependencies, it
// prints what SOURCE.included holds.
#include <cstdio>
#include <cstring>

namespace {

char line[8192];

/// The value, when the line is that of the key.
const char* Value(const char* key) {
    const std::size_t size = std::strlen(key);
    return std::strncmp(line, key, size) == 0 ? line + size : nullptr;
}

int MakeFile(const char* path) {
    std::FILE* const output = std::fopen(path, "w");
    return output == nullptr ? 1 : std::fclose(output);
}

int PrintIncluded(const char* source) {
    static char path[8192];
    std::snprintf(path, sizeof path, "%s.included", source);
    std::FILE* const input = std::fopen(path, "r");
    while (input != nullptr && std::fgets(line, sizeof line, input) != nullptr) {
        std::fputs(line, stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const bool isListing = argc > 3 && std::strcmp(argv[3], "--display-dependencies") == 0;
    std::FILE* const settings = argc > 2 ? std::fopen(argv[2], "r") : nullptr;
    if (settings == nullptr) {
        return 1;
    }
    while (std::fgets(line, sizeof line, settings) != nullptr) {
        line[std::strcspn(line, "\n")] = '\0';
        const char* const output = Value("output-file=");
        const char* const source = Value("source-file=");
        if (!isListing && output != nullptr) {
            return MakeFile(output);
        }
        if (isListing && source != nullptr) {
            return PrintIncluded(source);
        }
    }
    return 1;
}
