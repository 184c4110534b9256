# How every target of this tree is compiled.

if(NOT (CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
        AND NOT (CMAKE_CXX_COMPILER_ID STREQUAL Clang
            AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 14))
    message(FATAL_ERROR
        "The compiler ${CMAKE_CXX_COMPILER} is ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}, which is not supported; name GCC 12, Clang 14 or a newer one of them with -DCMAKE_CXX_COMPILER=<program>.")
endif()

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# File sizes and offsets are 64 bits wide on every target, 32-bit ones included.
add_compile_definitions(_FILE_OFFSET_BITS=64)

# Hardening; tests/hardening looks for it in the built files.
add_compile_options(-fstack-protector-strong)
add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack)
if(NOT TAVO_SANITIZE)
    # Needs optimisation, and would keep the sanitizers from seeing what it replaces.
    add_compile_options($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
endif()
# Containers and iterators of the standard library check how they are used, where it may cost time.
if(TAVO_SANITIZE OR TAVO_FUZZ)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
else()
    add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
endif()

if(TAVO_SANITIZE)
    # Without -fno-sanitize-recover a finding would be printed and the test would still pass.
    add_compile_options(-fsanitize=${TAVO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${TAVO_SANITIZE})
endif()

if(TAVO_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
        message(FATAL_ERROR
            "The fuzz targets need Clang, and the compiler ${CMAKE_CXX_COMPILER} is ${CMAKE_CXX_COMPILER_ID}; use the preset fuzz.")
    endif()
    # Counters for the fuzzer in all code of the tree; its own main() is in the targets only.
    add_compile_options(-fsanitize=fuzzer-no-link)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()

# tavo_warnings(<target>...): the warnings that this tree is free of.
function(tavo_warnings)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
            -Wnon-virtual-dtor $<$<BOOL:${TAVO_WARNINGS_AS_ERRORS}>:-Werror>)
    endforeach()
endfunction()
