# libFuzzer executables (clang only), each compiling the readers it fuzzes with coverage
# instrumentation. Built by ./dev fuzz in its own tree.
set(fuzz_sources
  ${PROJECT_SOURCE_DIR}/tests/fuzz/Harnesses.cpp
  ${PROJECT_SOURCE_DIR}/platform/property/ExceptionBase.cpp
  ${PROJECT_SOURCE_DIR}/platform/property/PropertyItemInterface.cpp
  ${PROJECT_SOURCE_DIR}/platform/property/ValidationResult.cpp
  ${PROJECT_SOURCE_DIR}/platform/property/InvalidPropertyValueException.cpp
  ${PROJECT_SOURCE_DIR}/platform/common/Variant.cpp
  ${PROJECT_SOURCE_DIR}/platform/serialize/SerializerInterface.cpp
  ${PROJECT_SOURCE_DIR}/platform/serialize/Serializer.cpp
  ${PROJECT_SOURCE_DIR}/platform/serialize/VectorSerializer.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/Variable.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/Record.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/AuxFile.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/TagGroup.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/Project.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/ProjectBuilder.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/StudyFormatError.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/StudyReader.cpp
  ${PROJECT_SOURCE_DIR}/platform/datamanagement/CsvTokenizer.cpp
  ${PROJECT_SOURCE_DIR}/src/serialization/Serializers.cpp)
foreach(name settings list study)
  add_executable(fuzz_${name} ${PROJECT_SOURCE_DIR}/tests/fuzz/fuzz_${name}.cpp ${fuzz_sources})
  target_include_directories(fuzz_${name} PRIVATE ${PROJECT_SOURCE_DIR}/platform ${PROJECT_SOURCE_DIR}/src
    ${PROJECT_SOURCE_DIR}/tests/fuzz ${QUEN_GENERATED_INCLUDEDIR})
  target_compile_definitions(fuzz_${name} PRIVATE QT_NO_KEYWORDS)
  target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer,address,undefined,float-cast-overflow
    -fno-sanitize-recover=all -g -O1)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer,address,undefined,float-cast-overflow)
  target_link_libraries(fuzz_${name} PRIVATE Qt5::Core Qt5::Xml Boost::headers)
endforeach()
