# Helpers shared by every target of the project: warnings, visibility, export headers and
# install rules are applied per target, never through global flags.
include(GenerateExportHeader)

set(QUEN_EXPORT_SET quen_analyzer_dataviews_commonTargets)
set(QUEN_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/quen")
set(QUEN_GENERATED_INCLUDEDIR "${PROJECT_BINARY_DIR}/generated/include")

function(quen_apply_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  if(QUEN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# quen_add_library(<name> ROOT <dir> FOLDERS <folder>... SOURCES ...
#                  [EXPORT_FOLDER <folder>] [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
# Builds a shared library whose headers live in ROOT/<folder> and are included as
# "<folder>/Header.h", both in the tree and once installed. A generated
# "[<EXPORT_FOLDER>/]<name>_export.h" defines <NAME>_EXPORT.
function(quen_add_library name)
  cmake_parse_arguments(ARG "" "ROOT;EXPORT_FOLDER" "FOLDERS;SOURCES;PUBLIC_LIBS;PRIVATE_LIBS"
    ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  add_library(quen::${name} ALIAS ${name})
  string(TOUPPER ${name} upper)
  if(ARG_EXPORT_FOLDER)
    set(export_subdir "${ARG_EXPORT_FOLDER}/")
  else()
    set(export_subdir "")
  endif()
  set(export_header "${QUEN_GENERATED_INCLUDEDIR}/${export_subdir}${name}_export.h")
  generate_export_header(${name} BASE_NAME ${upper} EXPORT_FILE_NAME "${export_header}")
  set_target_properties(${name} PROPERTIES
    AUTOMOC ON
    AUTORCC ON
    CXX_VISIBILITY_PRESET hidden
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS)
  target_include_directories(${name} PUBLIC
    "$<BUILD_INTERFACE:${ARG_ROOT}>"
    "$<BUILD_INTERFACE:${QUEN_GENERATED_INCLUDEDIR}>"
    "$<INSTALL_INTERFACE:${QUEN_INSTALL_INCLUDEDIR}>")
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
  quen_apply_warnings(${name})

  install(TARGETS ${name} EXPORT ${QUEN_EXPORT_SET}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  foreach(folder IN LISTS ARG_FOLDERS)
    install(DIRECTORY "${ARG_ROOT}/${folder}/"
      DESTINATION "${QUEN_INSTALL_INCLUDEDIR}/${folder}"
      FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE)
  endforeach()
  install(FILES "${export_header}" DESTINATION "${QUEN_INSTALL_INCLUDEDIR}/${ARG_EXPORT_FOLDER}")
endfunction()

# quen_add_test(<name> LABEL <label> SOURCES ... LIBS ...)
# One GoogleTest executable per test folder, run by ctest as one test.
function(quen_add_test name)
  cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_link_libraries(${name} PRIVATE quen_test_support ${ARG_LIBS} ${VTK_LIBRARIES})
  vtk_module_autoinit(TARGETS ${name} MODULES ${VTK_LIBRARIES})
  quen_apply_warnings(${name})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600)
endfunction()

function(quen_install_package)
  set(config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/quen_analyzer_dataviews_common")
  install(EXPORT ${QUEN_EXPORT_SET} NAMESPACE quen:: DESTINATION "${config_dir}")
  configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/quen_analyzer_dataviews_commonConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/quen_analyzer_dataviews_commonConfig.cmake"
    INSTALL_DESTINATION "${config_dir}")
  write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/quen_analyzer_dataviews_commonConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES
    "${PROJECT_BINARY_DIR}/quen_analyzer_dataviews_commonConfig.cmake"
    "${PROJECT_BINARY_DIR}/quen_analyzer_dataviews_commonConfigVersion.cmake"
    DESTINATION "${config_dir}")
endfunction()
