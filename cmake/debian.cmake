# Debian packages by CPack, one for programs that run and one for building them. What only a package
# of Debian's carries is left out by `cmake --install`. A build for /usr makes them as Debian lays
# out its files: scripts/package does that, and checks them.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The ZVMath authors <authors@zvmath.invalid>")  # no address to write to yet
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE zvmath)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)  # the same version packaged anew counts this up
set(CPACK_DEBIAN_PACKAGE_MULTIARCH same)
set(debian_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libzvmath${ZVMATH_SOVERSION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/packaging/debian/triggers)
# A program may need a function that came with the version it was linked with; none goes away.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzvmath-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${debian_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libeigen3-dev)  # for zvmath/lasso.h

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # or the synopsis would be the same for both
set(about "Matrices, statistics, special functions, regression, clustering, sampling and
geometry. The same input gives the same bits at every optimisation level, from
GCC and Clang, with and without AVX2.
")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}: shared libraries
${about}
This package has the shared libraries, which programs need to run.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION}: headers and link files
${about}
This package has what programs are built with: headers, a CMake package and a
pkg-config file.")

# gzipped(<file> <name>): the file <name>.gz in the build tree, with no time of its own inside.
function(gzipped file name)
  execute_process(COMMAND ${GZIP_EXECUTABLE} -9nc ${file} OUTPUT_FILE ${name}.gz COMMAND_ERROR_IS_FATAL ANY
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/debian)
endfunction()

find_program(GZIP_EXECUTABLE gzip)
if(GZIP_EXECUTABLE)
  string(TIMESTAMP debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # or SOURCE_DATE_EPOCH
  configure_file(packaging/debian/changelog.in debian/changelog @ONLY)
  configure_file(CHANGELOG.md debian/CHANGELOG.md COPYONLY)
  gzipped(changelog changelog.Debian)
  gzipped(CHANGELOG.md changelog)
  foreach(component runtime development)
    string(TOUPPER ${component} name)
    install(FILES packaging/copyright
      ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog.Debian.gz
      ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog.gz
      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${name}_PACKAGE_NAME}
      COMPONENT ${component} EXCLUDE_FROM_ALL)
  endforeach()
  install(FILES packaging/debian/lintian-overrides
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
    RENAME ${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} COMPONENT runtime EXCLUDE_FROM_ALL)
endif()
include(CPack)
