# The rooms, from the lowest up, and those of src/ that each may include beside itself. The build links by this table;
# tests/checks/check_layers.py reads it too, and holds the includes to it.
set(ORVANTA_ROOMS
    "src/platform"
    "src/report platform"
    "src/settings platform"
    "src/suppress report platform"
    "src/render suppress report platform"
    "src/compilers settings platform"
    "src/buildinput compilers settings platform"
    "src/history buildinput compilers report settings platform"
    "src/cache report settings platform"
    "src/analysis cache history buildinput compilers report settings platform"
    "src/shards analysis cache history buildinput compilers report settings platform"
    "src/app shards analysis cache history render suppress buildinput compilers report settings platform"
    "cores/bundled report settings platform")

# orvanta_link_room(TARGET FOLDER)
# Links a target to the rooms that the code of its folder may include.
function(orvanta_link_room target folder)
    foreach(row IN LISTS ORVANTA_ROOMS)
        separate_arguments(row UNIX_COMMAND "${row}")
        list(POP_FRONT row room)
        if(room STREQUAL folder)
            list(TRANSFORM row PREPEND orvanta_)
            target_link_libraries(${target} PUBLIC ${row})
            return()
        endif()
    endforeach()
    message(FATAL_ERROR "${folder} has no row in ORVANTA_ROOMS")
endfunction()

# orvanta_room(NAME SOURCES file...)
# One static library per folder of src/.
function(orvanta_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES" ${ARGN})
    add_library(orvanta_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(orvanta_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    orvanta_link_room(orvanta_${name} src/${name})
    target_link_libraries(orvanta_${name} PRIVATE orvanta_warnings)
    orvanta_precompile(orvanta_${name} orvanta_platform)
endfunction()

# orvanta_room_tests(NAME SOURCES file...)
# The unit tests of one room: one GoogleTest program, its cases found by ctest.
function(orvanta_room_tests name)
    cmake_parse_arguments(ROOM "" "" "SOURCES" ${ARGN})
    add_executable(${name}_tests ${ROOM_SOURCES})
    target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name}_tests PRIVATE
        orvanta_${name} orvanta_warnings GTest::gtest GTest::gmock GTest::gtest_main)
    orvanta_precompile(${name}_tests settings_tests ${ORVANTA_TEST_HEADERS})
    set_target_properties(${name}_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    orvanta_register_tests(${name}_tests PREFIX ${name})
endfunction()
