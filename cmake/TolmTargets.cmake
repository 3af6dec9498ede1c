# Compiler settings of every target, and the three kinds of target that the folders declare.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

add_library(tolm_options INTERFACE)
target_include_directories(tolm_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(tolm_options INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wconversion -Wshadow -Werror>
    # The same float results from every compiler: no contraction, no reassociation. errno and
    # floating-point traps are nobody's interest here and would only block vectorisation.
    $<$<COMPILE_LANGUAGE:CXX>:-ffp-contract=off -fno-math-errno -fno-trapping-math>)
target_link_libraries(tolm_options INTERFACE Threads::Threads)
find_package(Threads REQUIRED)

if(TOLM_SANITIZE)
    string(REPLACE "," "_" tolm_sanitize_name "${TOLM_SANITIZE}")
    target_compile_options(tolm_options INTERFACE
        -fsanitize=${TOLM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tolm_options INTERFACE -fsanitize=${TOLM_SANITIZE})
endif()

# tolm_library(NAME FILES... [LINKS ...]): the static library of a folder.
function(tolm_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC tolm_options ${arg_LINKS})
endfunction()

# tolm_program(NAME SOURCES ... LINKS ...): a command line program.
function(tolm_program name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE tolm_options ${arg_LINKS})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
endfunction()

# tolm_tests(NAME SOURCES ... LINKS ...): one GoogleTest program, known to CTest under its name.
function(tolm_tests name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE tolm_options ${arg_LINKS} GTest::gmock GTest::gtest_main)
    target_compile_definitions(${name} PRIVATE
        TOLM_SOURCE_DIR="${PROJECT_SOURCE_DIR}" TOLM_BUILD_DIR="${PROJECT_BINARY_DIR}")
    add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY "${PROJECT_BINARY_DIR}")
endfunction()

# tolm_embed(TARGET SYMBOL FILE): adds FILE's bytes to TARGET's read-only data under SYMBOL and
# SYMBOLEnd (C linkage, hidden, 64-byte aligned).
function(tolm_embed target symbol file)
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${symbol}.S")
    file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT
"    .section .rodata
    .balign 64
    .global @symbol@
    .hidden @symbol@
@symbol@:
    .incbin \"@file@\"
    .global @symbol@End
    .hidden @symbol@End
@symbol@End:
    .byte 0
    .section .note.GNU-stack,\"\",%progbits
")
    target_sources(${target} PRIVATE "${source}")
    set_source_files_properties("${source}" PROPERTIES OBJECT_DEPENDS "${file}")
endfunction()
