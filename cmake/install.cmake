# What is installed: libraries, headers, a CMake package and a pkg-config file, none of which names
# the place they are installed to.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZVMath)

install(TARGETS zvmath zvcompanion EXPORT ZVMathTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(DIRECTORY include/zvmath companion/include/zvplatform companion/include/zvsystem
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
  include(cmake/debian.cmake)
endif()
