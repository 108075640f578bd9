# Run by CPack on the packages that it has made: those with libraries get the trigger with which Debian keeps
# its list of libraries, in place of scripts that do it once more.
foreach(package ${CPACK_PACKAGE_FILES})
  set(content ${CPACK_TEMPORARY_DIRECTORY}/repacked)
  file(REMOVE_RECURSE ${content})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${content} COMMAND_ERROR_IS_FATAL ANY)
  set(script)
  if(EXISTS ${content}/DEBIAN/postinst)
    file(READ ${content}/DEBIAN/postinst script)
  endif()
  if(script MATCHES ldconfig)
    file(REMOVE ${content}/DEBIAN/postinst ${content}/DEBIAN/postrm)
    if(EXISTS ${content}/DEBIAN/shlibs)
      file(WRITE ${content}/DEBIAN/triggers "activate-noawait ldconfig\n")
    endif()
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${content} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
