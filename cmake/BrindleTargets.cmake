# One folder of src/ is one library. Its headers are found by their bare names, and only by targets that link the
# folder: a file that includes what its folder may not know does not compile.

add_library(brindle_options INTERFACE)
target_compile_options(brindle_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${BRINDLE_WERROR}>:-Werror>)
# An optimizing GCC 12 sees faults in plain text concatenation and in vectors of one element (bug 105651 among others).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # Not in a debug build, whose commands clang-tidy reads: it does not know the option.
    target_compile_options(brindle_options INTERFACE $<$<CONFIG:Release>:-Wno-restrict;-Wno-array-bounds>)
endif()
if(BRINDLE_SANITIZE)
    target_compile_options(brindle_options INTERFACE -fsanitize=${BRINDLE_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(brindle_options INTERFACE -fsanitize=${BRINDLE_SANITIZE})
endif()

# brindle_library(NAME LINKS target...): the library brindle_NAME of this folder's sources.
function(brindle_library name)
    cmake_parse_arguments(ARG "" "" "LINKS;PRIVATE_LINKS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_library(brindle_${name} STATIC ${sources})
    target_include_directories(brindle_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(brindle_${name} PUBLIC ${ARG_LINKS} PRIVATE brindle_options ${ARG_PRIVATE_LINKS})
endfunction()

# brindle_test(NAME LABEL LINKS target... [SOURCES file...]): tests/NAME.cpp as one program of GoogleTest cases.
function(brindle_test name label)
    cmake_parse_arguments(ARG "" "" "LINKS;SOURCES" ${ARGN})
    if(NOT ARG_SOURCES)
        set(ARG_SOURCES ${name}.cpp)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE brindle_options brindle_test_support GTest::gtest GTest::gtest_main
        ${ARG_LINKS})
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${label} TIMEOUT 300)
endfunction()
