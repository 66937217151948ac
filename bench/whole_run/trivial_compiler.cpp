// The cheapest compiler there can be: answers --version, and "preprocesses" by making the output file.
#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    for (int index = 1; index < argc; ++index) {
        if (std::strcmp(argv[index], "--version") == 0) {
            return std::puts("trivial (GCC) 12.2.0") < 0 ? 1 : 0;
        }
        if (std::strcmp(argv[index], "-o") == 0 && index + 1 < argc) {
            std::FILE* const output = std::fopen(argv[index + 1], "w");
            return output == nullptr ? 1 : std::fclose(output);
        }
    }
    return 1;
}
