// The cheapest core there can be: reads the unit's settings and finds nothing.
#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    std::FILE* const settings = argc > 2 ? std::fopen(argv[2], "r") : nullptr;
    if (settings == nullptr) {
        return 1;
    }
    static char line[8192];
    while (std::fgets(line, sizeof line, settings) != nullptr) {
        static constexpr char Key[] = "output-file=";
        if (std::strncmp(line, Key, sizeof Key - 1) == 0) {
            line[std::strcspn(line, "\n")] = '\0';
            std::FILE* const output = std::fopen(line + sizeof Key - 1, "w");
            return output == nullptr ? 1 : std::fclose(output);
        }
    }
    return 1;
}
