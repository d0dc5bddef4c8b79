# Build-wide settings: language level, warnings, sanitizers, output folders.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release or RelWithDebInfo" FORCE)
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(XRV_PLUGIN_DIR "${PROJECT_BINARY_DIR}/bin/plugins")

option(BUILD_TESTING "Build the tests" ON)
option(XRV_BUILD_BENCH "Build the benchmark programs" OFF)
option(XRV_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
set(XRV_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined or thread")

# Compiler cache and fast linker where there are any: most of a full test run is building.
option(XRV_FAST_BUILD "Use ccache and mold where they are installed" ON)
set(XRV_OWN_LAUNCHER "${CMAKE_CXX_COMPILER_LAUNCHER}")
if(XRV_FAST_BUILD)
    find_program(XRV_CCACHE ccache)
    if(XRV_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
        # It is to accept precompiled headers, and not to run the preprocessor before every compilation that it misses.
        set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_DEPEND=1
            CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${XRV_CCACHE}")
    endif()
    find_program(XRV_MOLD mold)
    if(XRV_MOLD AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        add_link_options(-fuse-ld=mold)
    endif()
endif()

# Interface target that every target of this project links to.
add_library(project_options INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(project_options INTERFACE -Wall -Wextra -Wconversion -Wno-sign-conversion)
    # Members carry no prefix, so constructor arguments may bear their names; GCC's full -Wshadow objects to that.
    target_compile_options(project_options INTERFACE
        $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>)
    if(XRV_WARNINGS_AS_ERRORS)
        target_compile_options(project_options INTERFACE -Werror)
    endif()
elseif(MSVC)
    target_compile_options(project_options INTERFACE /W4 /utf-8)
endif()
target_compile_definitions(project_options INTERFACE QT_NO_CAST_FROM_ASCII)
if(WIN32)
    # <windows.h> without macros that clash with the standard library.
    target_compile_definitions(project_options INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
endif()

if(XRV_SANITIZE)
    add_compile_options(-fsanitize=${XRV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${XRV_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # GCC's manual: sanitizers make its flow analysis warn of variables that are initialized. The release build warns.
        target_compile_options(project_options INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()

# xrv_built_here(RESULT TARGET...): those of the targets that this build makes itself, for a library may come from elsewhere.
function(xrv_built_here result)
    set(built "")
    foreach(target ${ARGN})
        if(TARGET ${target})
            get_target_property(is_imported ${target} IMPORTED)
            if(NOT is_imported)
                list(APPEND built ${target})
            endif()
        endif()
    endforeach()
    set(${result} ${built} PARENT_SCOPE)
endfunction()
