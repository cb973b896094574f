# How every target of the house is built: language, warnings, sanitizers, compiler cache.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
# Programs find the libraries beside themselves, so that a build tree or an installed folder can be moved.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

find_program(ZB_CCACHE ccache)
if(ZB_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${ZB_CCACHE})
endif()

if(ZB_SANITIZE)
  add_compile_options(-fsanitize=${ZB_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZB_SANITIZE})
endif()

add_library(zb_house INTERFACE)
target_compile_options(zb_house INTERFACE -Wall -Wextra -Wpedantic -Werror)
# GCC 12 and 13, with full optimisation, find overflows in the standard library's own strings and sorts that can't be.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14)
  target_compile_options(zb_house INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo>:-Wno-array-bounds;-Wno-stringop-overflow;-Wno-restrict>)
endif()
target_include_directories(zb_house INTERFACE "${CMAKE_SOURCE_DIR}/src" "${CMAKE_SOURCE_DIR}/apps")

# All sources of a folder of this directory, without those of its subfolders.
function(zb_sources variable)
  set(found "")
  foreach(folder IN LISTS ARGN)
    file(GLOB here CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp")
    list(APPEND found ${here})
  endforeach()
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

# The standard headers that nearly every source reads, compiled once a target.
function(zb_standard_headers target)
  target_precompile_headers(${target} PRIVATE
    <algorithm> <array> <atomic> <chrono> <cstdint> <cstring> <filesystem> <functional> <map> <memory> <mutex>
    <optional> <string> <string_view> <thread> <unordered_map> <utility> <vector>)
endfunction()
