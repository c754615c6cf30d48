# Build settings shared by every target, and one function per kind of target.
option(QUOREL_TESTS "Build the tests" ON)
option(QUOREL_BENCH "Build the benchmarks" OFF)
option(QUOREL_WERROR "Treat warnings as errors" OFF)
set(QUOREL_SANITIZE "" CACHE STRING "Sanitizers to build with, such as address,undefined or thread")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(QUOREL_CCACHE ccache)
if(QUOREL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${QUOREL_CCACHE}")
endif()

include(QuorelWarnings)
include(QuorelSanitizers)

# quorel_library(NAME FOLDER dir [MOC] DEPENDS targets...)
# The static library quorel_NAME of all sources in src/dir (not below it). With MOC its classes may
# have signals.
function(quorel_library name)
  cmake_parse_arguments(ARG "MOC" "FOLDER" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/${ARG_FOLDER}/*.cpp"
       "${CMAKE_SOURCE_DIR}/src/${ARG_FOLDER}/*.h")
  add_library(quorel_${name} STATIC ${sources})
  set_target_properties(quorel_${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(quorel_${name} PUBLIC "${CMAKE_SOURCE_DIR}/src")
  target_link_libraries(quorel_${name} PUBLIC ${ARG_DEPENDS} Threads::Threads)
  set_target_properties(quorel_${name} PROPERTIES AUTOMOC ${ARG_MOC})
  quorel_settings(quorel_${name})
endfunction()

# quorel_test(NAME FOLDER dir DEPENDS targets... [THREADED] [PROPERTIES ctest properties...])
# The test program test_NAME of all sources in tests/dir, run case by case by ctest. THREADED ones
# run under ThreadSanitizer too: they bear the label "threads" and belong to `threaded_tests`.
function(quorel_test name)
  cmake_parse_arguments(ARG "THREADED" "FOLDER" "DEPENDS;PROPERTIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/${ARG_FOLDER}/*.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_include_directories(test_${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(test_${name} PRIVATE ${ARG_DEPENDS} GTest::gmock GTest::gtest_main)
  quorel_settings(test_${name})
  if(ARG_THREADED)
    list(APPEND ARG_PROPERTIES LABELS threads)
    add_dependencies(threaded_tests test_${name})
  endif()
  gtest_discover_tests(test_${name} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${name}."
                       PROPERTIES TIMEOUT 120 ${ARG_PROPERTIES})
endfunction()

# quorel_bench(NAME DEPENDS targets...): the benchmark program bench_NAME of bench/NAME.cpp.
function(quorel_bench name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  add_executable(bench_${name} "${CMAKE_SOURCE_DIR}/bench/${name}.cpp")
  target_link_libraries(bench_${name} PRIVATE ${ARG_DEPENDS} benchmark::benchmark)
  quorel_settings(bench_${name})
endfunction()

# quorel_program(NAME SOURCES files... DEPENDS targets...): an executable that users run.
function(quorel_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS})
  quorel_settings(${name})
endfunction()

function(quorel_settings target)
  quorel_warnings(${target})
  quorel_sanitizers(${target})
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS
                             QT_NO_FOREACH QUOREL_VERSION="${PROJECT_VERSION}")
endfunction()
