# quorel_fuzz(NAME [SOURCE source] DEPENDS targets...): the libFuzzer program fuzz_NAME of
# fuzz/NAME.cpp, or of fuzz/source.cpp.
function(quorel_fuzz name)
  cmake_parse_arguments(ARG "" "SOURCE" "DEPENDS" SOURCE ${name} ${ARGN})
  add_executable(fuzz_${name} EXCLUDE_FROM_ALL "${CMAKE_SOURCE_DIR}/fuzz/${ARG_SOURCE}.cpp")
  target_link_libraries(fuzz_${name} PRIVATE ${ARG_DEPENDS})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  quorel_settings(fuzz_${name})
  add_dependencies(fuzzers fuzz_${name})
endfunction()
