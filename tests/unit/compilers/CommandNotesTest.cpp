#include "compilers/CommandNotes.h"

#include "compilers/ClangCl.h"
#include "compilers/CommandLineReader.h"
#include "compilers/Gcc.h"
#include "unit/compilers/Reading.h"

#include <gtest/gtest.h>

namespace Orvanta {

namespace {

std::string OwnWords(const Compiler& model, const Words& words, std::string_view without) {
    const std::vector<WordNote> notes = NoteWords(model, words, OutlineInvocation(model, words).sources.at(0));
    std::vector<bool> left;
    for (const WordNote& note : notes) {
        left.push_back(Join(note.words) == without);
    }
    return Join(WithoutParts(words, notes, left));
}

// A command that is run again in another step must lose all that writes, in every form, and nothing else.
TEST(CommandNotes, OnlyWhatIsForTheOutputGoes) {
    const struct {
        const char* command;
        const char* without; // beside that; a flag as the compiler gets it
        const char* own;
    } rows[] = {
        {"gcc -O2 -c a.c -o a.o -I inc b.o", "", "-O2 a.c -I inc"},
        {"gcc -O2 -DA -c a.c", "-O2", "-DA a.c"},
        {"gcc -MD -MP -MF a.d -MT a.o -MQ a -g3 -c a.c -x c++", "", "-g3 a.c -x c++"},
        {"gcc -Wp,-MMD,a.d,-DA,-C -c a.c", "", "-Wp,-DA,-C a.c"},
        {"gcc -Wp,-DA,-C -c a.c", "-C", "-Wp,-DA a.c"},
        {"gcc -Wp,-MD,a.d -c a.c", "", "a.c"},
        {"gcc -Xclang -dependency-file -Xclang a.d -Xclang -DA -c a.c", "", "-Xclang -DA a.c"},
        {"gcc -save-temps=obj -ftime-trace -c -- a.c", "", "-- a.c"},
    };

    for (const auto& row : rows) {
        EXPECT_EQ(OwnWords(Gcc(), Split(row.command), row.without), row.own) << row.command;
    }
    EXPECT_EQ(OwnWords(ClangCl(), Split("clang-cl /c /Foa.obj /O2 /clang:-MD /clang:-DA /Tca.c /link x.lib"), ""),
              "/c /O2 /clang:-DA /Tca.c"); // beside /P, /c means nothing
}

} // namespace

} // namespace Orvanta
