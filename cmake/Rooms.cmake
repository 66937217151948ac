# orvanta_room(NAME SOURCES file... [DEPENDS room...])
# One static library per folder of src/. A room may include what it depends on, and nothing above it.
function(orvanta_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;DEPENDS" ${ARGN})
    add_library(orvanta_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(orvanta_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    foreach(room IN LISTS ROOM_DEPENDS)
        target_link_libraries(orvanta_${name} PUBLIC orvanta_${room})
    endforeach()
    target_link_libraries(orvanta_${name} PRIVATE orvanta_warnings)
endfunction()

# orvanta_room_tests(NAME SOURCES file...)
# The unit tests of one room: one GoogleTest program, its cases found by ctest.
function(orvanta_room_tests name)
    cmake_parse_arguments(ROOM "" "" "SOURCES" ${ARGN})
    add_executable(${name}_tests ${ROOM_SOURCES})
    target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name}_tests PRIVATE
        orvanta_${name} orvanta_warnings GTest::gtest GTest::gmock GTest::gtest_main)
    set_target_properties(${name}_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    orvanta_register_tests(${name}_tests PREFIX ${name})
endfunction()
