# Flags that every target of ours shares. Warnings are errors with both compilers.
add_library(sunpane_flags INTERFACE)
target_compile_options(sunpane_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
  -Wcast-align -Wimplicit-fallthrough -Werror)
# Small code for the whole, because a folded panel must not take memory; fast code where it counts (sunpane_fast).
set(CMAKE_CXX_FLAGS_RELEASE "-Os -DNDEBUG")
target_compile_options(sunpane_flags INTERFACE $<$<CONFIG:Release>:-ffunction-sections -fdata-sections>)
target_link_options(sunpane_flags INTERFACE $<$<CONFIG:Release>:-Wl,--gc-sections>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlapping copies in the string library's own operator+ when it optimises (GCC bug 105651).
  target_compile_options(sunpane_flags INTERFACE -Wno-restrict)
endif()
if(SUNPANE_SANITIZE)
  target_compile_options(sunpane_flags INTERFACE
    -fsanitize=${SUNPANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(sunpane_flags INTERFACE -fsanitize=${SUNPANE_SANITIZE})
endif()

# sunpane_library(NAME SOURCES...): one layer. Includes are written from src/, as in "base/Clock.h".
function(sunpane_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE sunpane_flags)
endfunction()

# sunpane_fast(NAME): compiles a library for speed, at the cost of its size.
function(sunpane_fast name)
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O3>)
endfunction()
