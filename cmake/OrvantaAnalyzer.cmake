# Analysis as targets of a CMake project. Include this before the targets of the project are made:
#
#   include(OrvantaAnalyzer)
#
# `analyze` analyzes the whole project, `analyze-changed` what has changed since. Both print the findings as a compiler
# prints its warnings, and write a report and a page for a browser into the folder "orvanta" of the build. Before the
# include, these may be set:
#   ORVANTA_OPTIONS  more options of `orvanta-analyzer analyze`, such as -e;third_party
#   ORVANTA_FAIL_ON  findings that make the targets fail, such as GA:1 (see --fail-on of orvlog-converter)
#   ORVANTA_BASE     a suppression base whose findings are left out
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(ORVANTA_ANALYZER orvanta-analyzer DOC "The analyzer")
find_program(ORVLOG_CONVERTER orvlog-converter DOC "The converter of its reports")
if(NOT ORVANTA_ANALYZER OR NOT ORVLOG_CONVERTER)
    message(STATUS "orvanta-analyzer is not installed: there are no targets \"analyze\" and \"analyze-changed\"")
    return()
endif()

set(_orvanta_folder ${CMAKE_BINARY_DIR}/orvanta)
file(MAKE_DIRECTORY ${_orvanta_folder})
set(_orvanta_convert ${ORVLOG_CONVERTER} ${_orvanta_folder}/report.json -r ${CMAKE_SOURCE_DIR})
if(ORVANTA_BASE)
    list(APPEND _orvanta_convert -s ${ORVANTA_BASE})
endif()
set(_orvanta_gate)
if(ORVANTA_FAIL_ON)
    set(_orvanta_gate --fail-on ${ORVANTA_FAIL_ON})
endif()
foreach(_orvanta_target analyze analyze-changed)
    set(_orvanta_incremental)
    if(_orvanta_target STREQUAL "analyze-changed")
        set(_orvanta_incremental -i)
    endif()
    add_custom_target(${_orvanta_target}
        COMMAND ${ORVANTA_ANALYZER} analyze -q ${_orvanta_incremental} -f ${CMAKE_BINARY_DIR}/compile_commands.json
                -o ${_orvanta_folder}/report.json ${ORVANTA_OPTIONS}
        COMMAND ${_orvanta_convert} -t html -o ${_orvanta_folder}/report.html
        COMMAND ${_orvanta_convert} -t text -o - ${_orvanta_gate}
        WORKING_DIRECTORY ${CMAKE_BINARY_DIR}
        COMMENT "Analyzing; page for a browser: ${_orvanta_folder}/report.html"
        USES_TERMINAL VERBATIM)
endforeach()
