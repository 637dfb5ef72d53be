# What an installation holds: the library, its public headers, the CMake package and the pkg-config file. All of it finds
# its parts from where it stands, so that a prefix can be moved.

include(CMakePackageConfigHelpers)

set(KESTRIN_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/lKestrinDb")
set(KESTRIN_PACKAGEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/lKestrinDb")
set(KESTRIN_PKGCONFIGDIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS lKestrinDb EXPORT lKestrinDb LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(EXPORT lKestrinDb
  NAMESPACE lKestrinDb:: FILE lKestrinDbTargets.cmake DESTINATION "${KESTRIN_PACKAGEDIR}")

install(CODE "
  set(KESTRIN_HEADERS \"${PROJECT_SOURCE_DIR}/src\")
  set(KESTRIN_INCLUDEDIR \"${KESTRIN_INCLUDEDIR}\")")
install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/InstallHeaders.cmake")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/lKestrinDbConfig.cmake.in" lKestrinDbConfig.cmake
  INSTALL_DESTINATION "${KESTRIN_PACKAGEDIR}")
write_basic_package_version_file(lKestrinDbConfigVersion.cmake COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH KESTRIN_PREFIX_FROM_PKGCONFIG "/${KESTRIN_PKGCONFIGDIR}" /)
configure_file("${PROJECT_SOURCE_DIR}/cmake/lKestrinDb.pc.in" lKestrinDb.pc @ONLY)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/lKestrinDbConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/lKestrinDbConfigVersion.cmake"
  DESTINATION "${KESTRIN_PACKAGEDIR}")
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/lKestrinDb.pc" DESTINATION "${KESTRIN_PKGCONFIGDIR}")
