# Run by cpack on the installed files before they are packed: compresses what policy wants compressed, and finds out
# which packages the programs need and which their modules would like.
set(usr ${CPACK_TEMPORARY_DIRECTORY}/usr)
file(GLOB pages ${usr}/share/man/man1/*.1)
execute_process(COMMAND gzip -9n ${pages} ${usr}/share/doc/dawnly/changelog COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE ${usr}/share/doc/dawnly/LICENSE)  # the copyright file has it

set(work ${CPACK_TEMPORARY_DIRECTORY}.shlibdeps)
file(MAKE_DIRECTORY ${work}/debian)
file(WRITE ${work}/debian/control "Source: dawnly\n\nPackage: dawnly\nArchitecture: any\n")
file(GLOB programs ${usr}/lib/dawnly/Dawnly.app/bin/*)
file(GLOB modules ${usr}/lib/dawnly/Dawnly.app/lib/dawnly/*.so)
list(TRANSFORM modules PREPEND -e OUTPUT_VARIABLE moduleOptions)
list(TRANSFORM programs PREPEND -e OUTPUT_VARIABLE programOptions)
execute_process(COMMAND dpkg-shlibdeps -O -dDepends ${programOptions} -dRecommends ${moduleOptions}
  WORKING_DIRECTORY ${work} OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${work})
foreach(field Depends Recommends)
  string(TOUPPER ${field} variable)
  if(NOT found MATCHES "shlibs:${field}=([^\n]+)")
    message(FATAL_ERROR "no ${field} were found in: ${found}")
  endif()
  set(CPACK_DEBIAN_PACKAGE_${variable} "${CMAKE_MATCH_1}, ${CPACK_DEBIAN_PACKAGE_${variable}}")
endforeach()
