# The Debian packages, one for each part that somebody may want by itself; scripts/package.sh makes them.
# To be included behind all install rules.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME grouptracker)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_CONTACT "Group Tracker maintainers <maintainers@grouptracker.example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# What is installed into the system's own places needs no search path of its own.
set(CPACK_PRE_BUILD_SCRIPTS
  ${PROJECT_SOURCE_DIR}/packaging/RemoveRunPath.cmake ${PROJECT_SOURCE_DIR}/packaging/ConfigurationFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/UseTriggers.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}
  ${PROJECT_BINARY_DIR}/lib)
set(CPACK_COMPONENTS_ALL program mox kel library development)
if(TARGET python_module)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()

# grouptracker_package(COMPONENT NAME SECTION [DEPENDS PACKAGE ...] [NEEDS PACKAGES] SUMMARY ... TEXT ...)
function(grouptracker_package component name section)
  cmake_parse_arguments(arg "" "SUMMARY;TEXT;NEEDS" "DEPENDS" ${ARGN})
  string(TOUPPER ${component} upper)
  set(depends ${arg_NEEDS})
  foreach(package ${arg_DEPENDS})
    list(APPEND depends "${package} (= ${PROJECT_VERSION}-1)")
  endforeach()
  list(JOIN depends ", " depends)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS ${depends} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${arg_SUMMARY}\n${arg_TEXT}" PARENT_SCOPE)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright ${PROJECT_BINARY_DIR}/manual/changelog.Debian.gz
    DESTINATION share/doc/${name} COMPONENT ${component} OPTIONAL)
endfunction()

set(about "Group Tracker takes the tracks of single persons, frame by frame, and says who\nwalks with whom, since when, and how sure that is.")
grouptracker_package(program grouptracker science DEPENDS libmox0 libkel0
  SUMMARY "groups of people out of their tracks"
  TEXT "${about}\nThis package has the program, its plugin and parameter files to start from.")
grouptracker_package(mox libmox0 libs
  SUMMARY "plugins and processes for trackers"
  TEXT "mox loads plugins and makes the processes that they bring.\nThis package has the library.")
grouptracker_package(kel libkel0 libs DEPENDS libmox0
  SUMMARY "people and groups as trackers hand them on"
  TEXT "kel has the records that trackers exchange, and their interfaces.\nThis package has the library.")
grouptracker_package(library libgrouptracker0 libs DEPENDS libmox0 libkel0
  SUMMARY "groups of people for other programs"
  TEXT "${about}\nThis package has the library that other programs use.")
grouptracker_package(development libgrouptracker-dev libdevel DEPENDS libgrouptracker0 libmox0 libkel0
  NEEDS "libc6-dev"
  SUMMARY "groups of people for other programs, for development"
  TEXT "${about}\nThis package has the headers and the CMake packages grouptracker, mox\nand kel. The latter two need qtbase5-dev and libopencv-dev, too.")
# The module is compiled for one version of the interpreter.
set(python_needed "python3")
if(TARGET python_module)
  get_target_property(version python_module PYTHON_VERSION)
  string(REGEX MATCH "^3\\.([0-9]+)" version ${version})
  math(EXPR next "${CMAKE_MATCH_1} + 1")
  set(python_needed "python3 (>= ${version}~), python3 (<< 3.${next})")
endif()
grouptracker_package(python python3-grouptracker python DEPENDS libmox0 libkel0
  NEEDS "${python_needed}, python3-numpy"
  SUMMARY "groups of people for Python"
  TEXT "${about}\nThis package has the Python module.")
# Loaded by runs that talk to a broker only.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS libmosquitto1)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "qtbase5-dev, libopencv-dev")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pandas")
# What services kept goes when the package is purged; what was changed in /etc stays when it is renewed.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/program/postrm ${PROJECT_SOURCE_DIR}/packaging/program/conffiles)
# What the interpreter compiles goes with the package.
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/python/postinst ${PROJECT_SOURCE_DIR}/packaging/python/prerm)

# What describes the commands is made by the program itself.
add_custom_target(manual
  COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen /usr/bin/python3
    ${PROJECT_SOURCE_DIR}/scripts/make-manual.py $<TARGET_FILE:grouptracker> ${PROJECT_BINARY_DIR}/manual
  COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/packaging/changelog > ${PROJECT_BINARY_DIR}/manual/changelog.Debian.gz
  DEPENDS grouptracker
  COMMENT "Man pages, completion and reference out of the program's help"
  VERBATIM)
install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/man1 DESTINATION share/man
  COMPONENT program OPTIONAL)
install(FILES ${PROJECT_BINARY_DIR}/manual/grouptracker.bash RENAME grouptracker
  DESTINATION share/bash-completion/completions COMPONENT program OPTIONAL)
install(FILES ${PROJECT_BINARY_DIR}/manual/_grouptracker
  DESTINATION share/zsh/vendor-completions COMPONENT program OPTIONAL)
install(FILES README.md DESTINATION share/doc/grouptracker COMPONENT program)
install(DIRECTORY docs DESTINATION share/doc/grouptracker COMPONENT program)
install(DIRECTORY examples/embed DESTINATION share/doc/libgrouptracker-dev/examples
  COMPONENT development)

include(CPack)
