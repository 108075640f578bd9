# platform_library(NAME SOURCES ... LINKS ...): a shared library NAME::NAME that exports its
# classes, is found under <NAME/Class.h>, and installs a CMake package.
include(CMakePackageConfigHelpers)
include(GenerateExportHeader)
include(GNUInstallDirs)

function(platform_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} SHARED ${arg_SOURCES})
  add_library(${name}::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    AUTOMOC ON UNITY_BUILD ON CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    INSTALL_RPATH "$ORIGIN"
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_compile_options(${name} PRIVATE -ffp-contract=off)
  generate_export_header(${name} EXPORT_FILE_NAME ${CMAKE_CURRENT_BINARY_DIR}/${name}/${name}Export.h)
  target_link_libraries(${name} PUBLIC ${arg_LINKS})
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/..>
    $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
  install(TARGETS ${name} EXPORT ${name}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${name} NAMELINK_COMPONENT development)
  install(DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name}
    COMPONENT development FILES_MATCHING PATTERN "*.h")
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}/${name}Export.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name} COMPONENT development)
  install(EXPORT ${name}Targets NAMESPACE ${name}:: DESTINATION ${package_dir}
    COMPONENT development)
  configure_package_config_file(${CMAKE_CURRENT_SOURCE_DIR}/${name}Config.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/${name}Config.cmake INSTALL_DESTINATION ${package_dir})
  write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}Config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake DESTINATION ${package_dir}
    COMPONENT development)
endfunction()
