# The warnings that our own code is held to. Only our targets link this one, so that a user's build never fails on them.
add_library(orvanta_warnings INTERFACE)
target_compile_options(orvanta_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wformat=2 -Wundef -Wcast-align -Wunused)
if(ORVANTA_STRICT)
    target_compile_options(orvanta_warnings INTERFACE -Werror)
endif()
