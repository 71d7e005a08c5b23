# Installation: the library, its two headers, a CMake package, a pkg-config file, and archives by CPack.

option(XELT_INSTALL "Install XeltRender and make packages of it" ${XELT_IS_TOP_LEVEL})
if(NOT XELT_INSTALL)
  return()
endif()

include(CMakePackageConfigHelpers)
set(_xelt_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/XeltRender)
set(_xelt_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS XeltRender EXPORT XeltRenderTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT XeltRenderTargets NAMESPACE XeltRender::
  DESTINATION ${_xelt_cmake_dir} COMPONENT development)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/packaging/XeltRenderConfig.cmake.in
  ${PROJECT_BINARY_DIR}/XeltRenderConfig.cmake
  INSTALL_DESTINATION ${_xelt_cmake_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/XeltRenderConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/XeltRenderConfig.cmake
  ${PROJECT_BINARY_DIR}/XeltRenderConfigVersion.cmake
  DESTINATION ${_xelt_cmake_dir} COMPONENT development)

# The prefix is written relative to the file, so an installed tree can be moved. Absolute install folders
# cannot, and are written as they are.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(XELT_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
  set(XELT_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
  set(XELT_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
  file(RELATIVE_PATH _xelt_up /p/${_xelt_pkgconfig_dir} /p)
  string(REGEX REPLACE "/$" "" _xelt_up "${_xelt_up}")
  set(XELT_PC_PREFIX "\${pcfiledir}/${_xelt_up}")
  set(XELT_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(XELT_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/packaging/XeltRender.pc.in ${PROJECT_BINARY_DIR}/XeltRender.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/XeltRender.pc DESTINATION ${_xelt_pkgconfig_dir} COMPONENT development)

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

if(XELT_IS_TOP_LEVEL)
  if(WIN32)
    set(CPACK_GENERATOR ZIP)
  else()
    set(CPACK_GENERATOR TGZ)
  endif()
  set(CPACK_PACKAGE_NAME XeltRender)
  set(CPACK_PACKAGE_VENDOR "XeltRender authors")
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Draws decoded video frames in Qt widgets")
  set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
  set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
  set(CPACK_STRIP_FILES ON)
  include(CPack)
endif()
