# How rooms, tests and benches are declared.
#
#   raylume_add_room(NAME SEES room... SOURCES file... [HEADERS exported-header...])
#     One object library, raylume_NAME. SEES names the rooms whose headers it may include; the test
#     "layers" holds the sources to it. HEADERS are the ones that an installation carries.
#   raylume_add_test(NAME LABEL label LINKS room... [LIBRARIES target...] SOURCES file... [NO_PLATFORM])
#     One GoogleTest program. LINKS names the rooms whose objects it links; object libraries are not
#     transitive, so a test names all that it needs. The platform library comes with every test but
#     one with NO_PLATFORM, which brings another implementation of it.

add_library(raylume_flags INTERFACE)
target_compile_features(raylume_flags INTERFACE cxx_std_20)
target_include_directories(raylume_flags INTERFACE ${PROJECT_SOURCE_DIR})
# Contraction to fused multiply-add would change results from one machine to the next.
target_compile_options(raylume_flags INTERFACE -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # That compiler's optimiser warns of overlapping copies inside its own string class.
    target_compile_options(raylume_flags INTERFACE -Wno-restrict)
endif()
if(RAYLUME_WERROR)
    target_compile_options(raylume_flags INTERFACE -Werror)
endif()
if(RAYLUME_SANITIZE)
    target_compile_options(raylume_flags INTERFACE -fsanitize=${RAYLUME_SANITIZE} -fno-omit-frame-pointer
                                                   -fno-sanitize-recover=all)
    target_link_options(raylume_flags INTERFACE -fsanitize=${RAYLUME_SANITIZE})
endif()
if(RAYLUME_BUILD_FUZZERS)
    target_compile_options(raylume_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(RAYLUME_COVERAGE)
    target_compile_options(raylume_flags INTERFACE --coverage)
    target_link_options(raylume_flags INTERFACE --coverage)
endif()

set_property(GLOBAL PROPERTY RAYLUME_ROOMS "")
set_property(GLOBAL PROPERTY RAYLUME_LAYERS "")

# A shared library has to name all that it uses. Not under sanitizers: their runtime comes with the
# program.
function(raylume_forbid_undefined target)
    if(NOT RAYLUME_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
endfunction()

function(raylume_install_header header)
    get_filename_component(absolute ${header} ABSOLUTE)
    file(RELATIVE_PATH relative ${PROJECT_SOURCE_DIR} ${absolute})
    get_filename_component(folder ${relative} DIRECTORY)
    install(FILES ${absolute} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/raylume-dl/${folder})
endfunction()

# What the test "layers" reads: folder, then the rooms that may be looked into.
function(raylume_declare_layer name)
    cmake_parse_arguments(ARG "" "" "SEES" ${ARGN})
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    string(REPLACE ";" " " sees "${ARG_SEES}")
    set_property(GLOBAL APPEND_STRING PROPERTY RAYLUME_LAYERS "${folder} ${name} ${sees}\n")
endfunction()

function(raylume_add_room name)
    cmake_parse_arguments(ARG "" "" "SEES;SOURCES;HEADERS" ${ARGN})
    add_library(raylume_${name} OBJECT ${ARG_SOURCES})
    target_link_libraries(raylume_${name} PRIVATE raylume_flags)
    set_property(GLOBAL APPEND PROPERTY RAYLUME_ROOMS ${name})
    raylume_declare_layer(${name} SEES ${ARG_SEES})
    foreach(header IN LISTS ARG_HEADERS)
        raylume_install_header(${header})
    endforeach()
endfunction()

function(raylume_add_test name)
    cmake_parse_arguments(ARG "NO_PLATFORM" "LABEL;TIMEOUT" "LINKS;LIBRARIES;SOURCES" ${ARGN})
    if(NOT RAYLUME_BUILD_TESTS)
        return()
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    foreach(room IN LISTS ARG_LINKS)
        target_sources(${name} PRIVATE $<TARGET_OBJECTS:raylume_${room}>)
    endforeach()
    if(NOT ARG_NO_PLATFORM)
        list(APPEND ARG_LIBRARIES raylume_platform)
    endif()
    target_link_libraries(${name} PRIVATE raylume_flags ${ARG_LIBRARIES} GTest::gmock_main)
    if(RAYLUME_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL Release)
        # What is tested is the library as it is built; tables of tests take the optimiser longer than
        # they take to run.
        target_compile_options(${name} PRIVATE -O0)
    endif()
    if(RAYLUME_DISCOVER_TESTS)
        gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120
                             PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT ${ARG_TIMEOUT})
    else()
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT ${ARG_TIMEOUT})
    endif()
endfunction()
