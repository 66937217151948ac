# Finds GoogleTest, tells ctest how programs of another system are run, and registers test programs.

if(CMAKE_CROSSCOMPILING)
    # No package has GoogleTest built for the other system; one has its sources.
    find_path(GOOGLETEST_SOURCE_DIR googlemock/CMakeLists.txt
        PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    mark_as_advanced(GOOGLETEST_SOURCE_DIR)
    set(INSTALL_GTEST OFF CACHE INTERNAL "")
    add_subdirectory(${GOOGLETEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

    # Debian keeps the programs of Wine out of the search path.
    execute_process(COMMAND dpkg-query --listfiles wine64 OUTPUT_VARIABLE wine_files ERROR_QUIET)
    string(REGEX MATCHALL "[^\n]*/wine64" wine_files "${wine_files}")
    set(wine_folders)
    foreach(file IN LISTS wine_files)
        get_filename_component(folder ${file} DIRECTORY)
        list(APPEND wine_folders ${folder})
    endforeach()
    find_program(WINE NAMES wine64 wine HINTS ${wine_folders} REQUIRED)
    find_program(WINESERVER NAMES wineserver64 wineserver HINTS ${wine_folders} REQUIRED)
    set(wine_environment
        ${CMAKE_COMMAND} -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY
        LC_ALL=C.UTF-8 WINEPREFIX=${CMAKE_BINARY_DIR}/wine WINEDEBUG=-all
        "WINEDLLOVERRIDES=mscoree,mshtml,winedbg.exe,winemenubuilder.exe=")
    set(CMAKE_CROSSCOMPILING_EMULATOR ${wine_environment} ${PROJECT_SOURCE_DIR}/tests/wine/run ${WINE})
    # Wine shows the whole file system as a drive; paths compiled into tests begin with it.
    set(ORVANTA_RUN_ROOT Z:)
    foreach(step begin end)
        add_test(NAME wine.${step}
            COMMAND ${wine_environment} ${PROJECT_SOURCE_DIR}/tests/wine/session ${step} ${WINE} ${WINESERVER})
    endforeach()
    set_tests_properties(wine.begin PROPERTIES FIXTURES_SETUP wine TIMEOUT 300)
    set_tests_properties(wine.end PROPERTIES FIXTURES_CLEANUP wine TIMEOUT 60)
else()
    find_package(GTest REQUIRED)
    set(ORVANTA_RUN_ROOT)
endif()
include(GoogleTest)

# orvanta_register_tests(TARGET PREFIX prefix [SHARDS n] [TIMEOUT seconds])
# Makes the cases of a GoogleTest program known to ctest, one by one. Where every start of a program is dear, they are
# run in `n` shares instead (default: 1).
function(orvanta_register_tests target)
    cmake_parse_arguments(TESTS "" "PREFIX;SHARDS;TIMEOUT" "" ${ARGN})
    set(timeout)
    if(TESTS_TIMEOUT)
        set(timeout TIMEOUT ${TESTS_TIMEOUT})
    endif()
    if(NOT CMAKE_CROSSCOMPILING)
        if(timeout)
            list(PREPEND timeout PROPERTIES)
        endif()
        gtest_discover_tests(${target} TEST_PREFIX ${TESTS_PREFIX}. DISCOVERY_MODE PRE_TEST ${timeout})
        return()
    endif()
    if(NOT TESTS_SHARDS)
        set(TESTS_SHARDS 1)
    endif()
    math(EXPR last "${TESTS_SHARDS} - 1")
    foreach(share RANGE ${last})
        set(name ${TESTS_PREFIX}.${share})
        add_test(NAME ${name} COMMAND ${target})
        set_tests_properties(${name} PROPERTIES
            FIXTURES_REQUIRED wine
            TIMEOUT 600
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${TESTS_SHARDS};GTEST_SHARD_INDEX=${share}")
    endforeach()
endfunction()
