# What every target of this repository shares: language level, warnings, visibility, instrumentation, test registration.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# The libraries find each other beside themselves, wherever the prefix is moved.
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# A compiler cache where there is one: the sanitizer presets share many translation units between runs.
find_program(ORVANE_CCACHE ccache)
mark_as_advanced(ORVANE_CCACHE)
if(ORVANE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Paths below the checkout do not count, so that two clones share results.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
                                  "${ORVANE_CCACHE}")
endif()

add_library(orvane_build_options INTERFACE)
target_compile_options(orvane_build_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
if(ORVANE_SANITIZE STREQUAL "address")
  # Without vptr: that check reads memory through a pipe, and takes a good object for a bad one in the tests that leave
  # the process no descriptor to open a pipe with.
  set(orvane_instrument -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
elseif(ORVANE_SANITIZE STREQUAL "thread")
  # Boost.Asio's fences are beyond what GCC's thread sanitizer models; the warning would end the build.
  set(orvane_instrument -fsanitize=thread -fno-omit-frame-pointer)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND orvane_instrument -Wno-tsan)
  endif()
elseif(ORVANE_SANITIZE)
  message(FATAL_ERROR "ORVANE_SANITIZE is '${ORVANE_SANITIZE}'; use address, thread or leave it empty")
endif()
if(ORVANE_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # As a linker of C++, clang adds an operator new of its thread sanitizer that no test could replace.
  set(orvane_instrument_link --driver-mode=gcc)
  target_link_libraries(orvane_build_options INTERFACE stdc++ m)
endif()
if(ORVANE_COVERAGE)
  # Counters of several threads must not lose counts, or end up negative.
  list(APPEND orvane_instrument --coverage -fprofile-update=atomic)
endif()
if(ORVANE_FUZZ)
  # Every room reports its coverage, or the fuzzer would look for new paths in the target's own few lines only.
  list(APPEND orvane_instrument -fsanitize=fuzzer-no-link)
endif()
if(orvane_instrument)
  target_compile_options(orvane_build_options INTERFACE ${orvane_instrument})
  target_link_options(orvane_build_options INTERFACE ${orvane_instrument} ${orvane_instrument_link})
endif()

# orvane_configure(<target>): warnings as errors, hidden symbols, the preset's instrumentation.
function(orvane_configure target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:orvane_build_options>)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# orvane_test(<name> SOURCES <files> [LIBRARIES <targets>] [DEFINITIONS <defs>] [TIMEOUT <seconds>]): one GoogleTest
# program, run as one ctest test; its single results go to test-results/<name>.xml, where the test script counts them.
function(orvane_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES;DEFINITIONS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 900)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  orvane_configure(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBRARIES} GTest::gmock_main)
  target_compile_definitions(${name} PRIVATE ${ARG_DEFINITIONS})
  # Tests are compiled more often than they run: optimising them would double the time of the whole build. What they
  # test is optimised all the same.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O0>)
  # Nor do they look for undefined behaviour in GoogleTest's templates, which is most of what they consist of.
  if(ORVANE_SANITIZE STREQUAL "address")
    target_compile_options(${name} PRIVATE -fno-sanitize=undefined)
  endif()
  add_test(NAME ${name} COMMAND ${name} --gtest_output=xml:${PROJECT_BINARY_DIR}/test-results/${name}.xml)
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
