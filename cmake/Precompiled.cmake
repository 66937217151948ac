# Where ORVANTA_PRECOMPILED is on, the headers that most sources read are compiled once for all of them. It is for
# builds beside others: in those without it, each source still has to include what it uses.
option(ORVANTA_PRECOMPILED "Precompile the headers of the standard library and of GoogleTest" OFF)

set(ORVANTA_STANDARD_HEADERS
    <algorithm> <array> <chrono> <cstddef> <cstdint> <functional> <map> <memory> <optional> <span> <string>
    <string_view> <utility> <vector>)
set(ORVANTA_TEST_HEADERS <filesystem> <sstream> <gtest/gtest.h> <gmock/gmock.h>)

# orvanta_precompile(TARGET FIRST [HEADER...])
# Has a target read the standard library's headers, and those named, precompiled, where that is on. The target FIRST,
# which must be told the same and has no macros of its own, compiles them for all others.
function(orvanta_precompile target first)
    if(NOT ORVANTA_PRECOMPILED)
        return()
    elseif(target STREQUAL first)
        target_precompile_headers(${target} PRIVATE ${ORVANTA_STANDARD_HEADERS} ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM ${first})
    endif()
endfunction()
