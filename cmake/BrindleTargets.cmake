# Each folder of src/ is one room and one library, brindle_NAME. Quoted includes give the path from src/, and
# configuring fails on an include of a room that the including library does not link.

add_library(brindle_options INTERFACE)
target_include_directories(brindle_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(brindle_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<BOOL:${BRINDLE_WERROR}>:-Werror>)
# Link only the libraries that a program uses, not everything that its own libraries might use.
target_link_options(brindle_options INTERFACE -Wl,--as-needed)
# With optimization, GCC 12 reports false faults in plain string concatenation and in vectors of one element (GCC bug
# 105651 and others).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # Not in a debug build: clang-tidy reads its commands, and does not know the option.
    target_compile_options(brindle_options INTERFACE $<$<CONFIG:Release>:-Wno-restrict;-Wno-array-bounds>)
endif()
if(BRINDLE_SANITIZE)
    target_compile_options(brindle_options INTERFACE -fsanitize=${BRINDLE_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(brindle_options INTERFACE -fsanitize=${BRINDLE_SANITIZE})
endif()

# brindle_check_includes(FILES file... LINKS target...): fails, with file and line, when a quoted include
# of these files names a folder of src/ that is neither the files' own, nor that of a target in LINKS.
function(brindle_check_includes)
    cmake_parse_arguments(ARG "" "" "FILES;LINKS" ${ARGN})
    file(RELATIVE_PATH own ${CMAKE_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
    set(rooms ${own})
    foreach(link ${ARG_LINKS})
        if(TARGET ${link})
            get_target_property(room ${link} BRINDLE_ROOM)
            list(APPEND rooms ${room})
        endif()
    endforeach()
    foreach(file ${ARG_FILES})
        file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
        foreach(include ${includes})
            string(REGEX REPLACE "^[^\"]*\"([^\"]*)\".*" "\\1" header "${include}")
            get_filename_component(room "${header}" DIRECTORY)
            if(NOT room IN_LIST rooms)
                brindle_line_of(${file} "${header}" line)
                message(FATAL_ERROR "${file}:${line}: includes \"${header}\", but ${own} does not link the library of "
                    "\"${room}\". See docs/architecture.md for what a folder may know.")
            endif()
        endforeach()
    endforeach()
endfunction()

# brindle_line_of(FILE HEADER RESULT): the number of the line that includes HEADER.
function(brindle_line_of file header result)
    file(READ ${file} text)
    string(FIND "${text}" "\"${header}\"" position)
    string(SUBSTRING "${text}" 0 ${position} before)
    string(REGEX REPLACE "[^\n]" "" breaks "${before}")
    string(LENGTH "${breaks}" count)
    math(EXPR line "${count} + 1")
    set(${result} ${line} PARENT_SCOPE)
endfunction()

# brindle_library(NAME LINKS target... PRIVATE_LINKS target...): makes the library brindle_NAME of this folder's
# sources. LINKS are needed by its headers, PRIVATE_LINKS only by its sources.
function(brindle_library name)
    cmake_parse_arguments(ARG "" "" "LINKS;PRIVATE_LINKS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
    add_library(brindle_${name} STATIC ${sources})
    file(RELATIVE_PATH room ${CMAKE_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
    set_target_properties(brindle_${name} PROPERTIES BRINDLE_ROOM ${room})
    brindle_check_includes(FILES ${sources} LINKS ${ARG_LINKS} ${ARG_PRIVATE_LINKS})
    target_link_libraries(brindle_${name} PUBLIC ${ARG_LINKS} PRIVATE brindle_options ${ARG_PRIVATE_LINKS})
endfunction()

# brindle_test(NAME LABEL LINKS target... [SOURCES file...]): builds tests/NAME.cpp as one GoogleTest program.
function(brindle_test name label)
    cmake_parse_arguments(ARG "" "" "LINKS;SOURCES" ${ARGN})
    if(NOT ARG_SOURCES)
        set(ARG_SOURCES ${name}.cpp)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE brindle_options brindle_test_support GTest::gtest GTest::gtest_main
        ${ARG_LINKS})
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${label} TIMEOUT 300)
endfunction()
