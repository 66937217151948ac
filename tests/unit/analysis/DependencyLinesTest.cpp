#include "analysis/DependencyLines.h"

#include "support/HostPath.h"

#include <gtest/gtest.h>

namespace Orvanta {
namespace {

TEST(DependencyLines, AreThoseWithTheMarkWhateverEndsThem) {
    const std::string output = "checking\r\n<}include{>" + HostPath("/p/a.c") +
                               "\r\n <}include{>no\n<}include{>sub/../b.h\n"
                               "<}include{>\n<}include{>" +
                               HostPath("/usr/x.h");
    EXPECT_EQ(ReadDependencyLines(output, HostPath("/w")),
              (std::vector<std::string>{HostPath("/p/a.c"), HostPath("/w/") + "sub/../b.h", "", HostPath("/usr/x.h")}));
}

} // namespace
} // namespace Orvanta
