# libFuzzer executables (clang only), built by ./dev fuzz in their own tree. The fuzz preset
# instruments every target of that tree for coverage (-fsanitize=fuzzer-no-link), so the
# harnesses link the library targets they fuzz as they are.
foreach(name settings list study tables)
  add_executable(fuzz_${name} ${PROJECT_SOURCE_DIR}/tests/fuzz/fuzz_${name}.cpp
    ${PROJECT_SOURCE_DIR}/tests/fuzz/Harnesses.cpp)
  target_include_directories(fuzz_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/fuzz)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  target_link_libraries(fuzz_${name} PRIVATE quen_analyzer_dataviews_common Qt5::Xml)
endforeach()
