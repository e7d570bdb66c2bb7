# What is installed: libraries, headers, a CMake package and a pkg-config file, none of which names
# the place they are installed to.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZVMath)

install(TARGETS zvmath zvcompanion EXPORT ZVMathTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(DIRECTORY include/zvmath companion/include/zvsystem
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

install(EXPORT ZVMathTargets NAMESPACE ZVMath:: DESTINATION ${package_dir} COMPONENT development)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/ZVMathConfig.cmake
  "include(\${CMAKE_CURRENT_LIST_DIR}/ZVMathTargets.cmake)\n")
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZVMathConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZVMathConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/ZVMathConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# How far the pkg-config file lies below the prefix, so that it follows when the tree is moved.
file(RELATIVE_PATH pc_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/zvmath.pc.in zvmath.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zvmath.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_CONTACT "The ZVMath developers <zvmath@localhost>")
  set(CPACK_PACKAGE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/packages)
  set(CPACK_COMPONENTS_ALL runtime development)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libzvmath${ZVMATH_SOVERSION})
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzvmath-dev)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libzvmath${ZVMATH_SOVERSION} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libeigen3-dev)  # for zvmath/lasso.h
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # or the synopsis would be the same for both
  set(families "Matrices, statistics, special functions, regression, clustering and sampling.")
  set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}: shared libraries\n${families}")
  set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "${PROJECT_DESCRIPTION}: headers and link files\n${families}")
  include(CPack)
endif()
