#include "render/SourcePaths.h"

#include <gtest/gtest.h>

namespace OrvlogConverter {
namespace {

struct PathCase {
    const char* root;
    const char* file;
    const char* shown;
    bool isBelow;
    const char* address;
};

TEST(SourcePaths, AreToldFromTheRoot) {
    const PathCase cases[] = {
        {"/p", "/p/src/a.c", "src/a.c", true, "src/a.c"},
        {"/p/", "|?|/src/a.c", "src/a.c", true, "src/a.c"},
        {"/p", "|?|\\src\\a.c", "src/a.c", true, "src/a.c"},
        {"/p", "/pp/a.c", "/pp/a.c", false, "file:///pp/a.c"},
        {"/p", "C:\\p\\a b.c", "C:/p/a b.c", false, "file:///C:/p/a%20b.c"},
        {"C:\\P", "c:\\p\\a.c", "a.c", true, "a.c"},
        {"/p", "\\\\host\\share\\a.c", "//host/share/a.c", false, "file://host/share/a.c"},
        {"/p", "./a.c", "a.c", true, "a.c"},
        {"../x", "../x/a#%?.c", "a#%?.c", true, "a%23%25%3F.c"},
        {"", "|?|/\xC3\xA9.c", "\xC3\xA9.c", true, "%C3%A9.c"},
        {"", "/elsewhere/a.c", "/elsewhere/a.c", false, "file:///elsewhere/a.c"},
        {"/p", "a:b/c.c", "a:b/c.c", false, "file:///a:b/c.c"}, // a drive's folder
        {"/p", "ab:c.c", "ab:c.c", true, "ab%3Ac.c"},
    };
    for (const PathCase& row : cases) {
        const SourcePaths paths{std::string(row.root)};
        const std::optional<std::string> below = paths.BelowRoot(row.file);
        EXPECT_EQ(paths.Shown(row.file), row.shown) << row.file;
        EXPECT_EQ(below.has_value(), row.isBelow) << row.file;
        EXPECT_EQ(AddressOf(paths.Shown(row.file)), row.address) << row.file;
    }
}

} // namespace
} // namespace OrvlogConverter
