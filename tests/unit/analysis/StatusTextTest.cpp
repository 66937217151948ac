#include "analysis/StatusText.h"

#include "report/TextColumns.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

using std::chrono::seconds;

const RunStatus Early = {3, 300, 2};
const RunStatus Usual = {12, 300, 2, seconds(185), "/src/parser/grammar.cpp", seconds(12)};

struct StatusCase {
    RunStatus status;
    std::size_t columns;
    const char* text;
};

const StatusCase StatusCases[] = {
    {Early, 80, "[3/300] 2 running"},
    {Usual, 80, "[12/300] 2 running, 3:05 left | 0:12 /src/parser/grammar.cpp"},
    {Usual, 59, "[12/300] 2 running, 3:05 left | 0:12 .../parser/grammar.cpp"},
    {Usual, 49, "[12/300] 2 running, 3:05 left | 0:12 ...ammar.cpp"},
    {Usual, 48, "[12/300] 2 running, 3:05 left"},
    {Usual, 28, "[12/300] 2 running"},
    {Usual, 10, "[12/300]"},
    {Usual, 7, ""},
    {{1, 2, 1, seconds(36'000 + 61)}, 80, "[1/2] 1 running, 10:01:01 left"},
    {{1, 2, 1, {}, "\u6E90\u6E90\u6E90\u6E90\u6E90\u6E90\u6E90\u6E90.c", seconds(9)},
     36,
     "[1/2] 1 running | 0:09 ...\u6E90\u6E90\u6E90\u6E90.c"},
    {{1, 2, 1, {}, "a\x1b[K\n.c", seconds(9)}, 80, "[1/2] 1 running | 0:09 a?[K?.c"},
};

TEST(StatusText, TellsWhatFits) {
    for (const StatusCase& row : StatusCases) {
        const std::string text = StatusText(row.status, row.columns);
        EXPECT_LE(OrvlogConverter::ColumnsOf(text), row.columns) << text;
        EXPECT_EQ(text, row.text) << row.columns;
    }
}

} // namespace
} // namespace Orvanta
