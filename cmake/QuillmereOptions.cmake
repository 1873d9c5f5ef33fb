# Compiler settings and the functions that every folder of the house uses.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set_property(GLOBAL PROPERTY USE_FOLDERS ON)

option(QUILLMERE_BUILD_TESTS "Build the test programs" ON)
option(QUILLMERE_BUILD_BENCH "Build the benchmarks" OFF)
option(QUILLMERE_BUILD_FUZZ "Build the fuzz targets (clang only)" OFF)
set(QUILLMERE_SANITIZE "" CACHE STRING "Sanitizers of -fsanitize=, for example address,undefined")

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(QUILLMERE_CCACHE ccache)
if(QUILLMERE_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QUILLMERE_CCACHE})
endif()

find_package(Threads REQUIRED)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # Falsely warns of "text" + std::string (GCC bug 105651, mended in 13).
    add_compile_options(-Wno-restrict)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    add_compile_options(-march=x86-64-v2)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options(-Wthread-safety -Wthread-safety-beta)
endif()
if(QUILLMERE_SANITIZE)
    add_compile_options(-fsanitize=${QUILLMERE_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QUILLMERE_SANITIZE})
endif()

# quillmere_library(NAME PATTERN...): a static library of every source that matches a pattern; the
# patterns are relative to the root.
function(quillmere_library name)
    list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/ OUTPUT_VARIABLE patterns)
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()
