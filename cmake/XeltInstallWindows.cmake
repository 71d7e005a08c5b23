# On Windows the archive is complete in itself: the player, Qt, ANGLE and the compiler's run-time library beside
# the DLL.

if(NOT XELT_INSTALL OR NOT XELT_IS_TOP_LEVEL OR NOT TARGET xeltplay)
  return()
endif()

install(TARGETS xeltplay RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT player)
# The player's --log option is its sample core library's.
install(TARGETS XeltCoreLog LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT player)

# Qt loads ANGLE's two by their names, from where its own libraries are.
install(FILES
  $<TARGET_FILE:Qt5::Core> $<TARGET_FILE:Qt5::Gui> $<TARGET_FILE:Qt5::Widgets>
  $<TARGET_FILE_DIR:Qt5::Core>/libEGL.dll $<TARGET_FILE_DIR:Qt5::Core>/libGLESv2.dll
  DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT player)
install(FILES $<TARGET_FILE:Qt5::QWindowsIntegrationPlugin>
  DESTINATION ${CMAKE_INSTALL_BINDIR}/platforms COMPONENT player)

if(MINGW)
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS ${file})
      message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${name}")
    endif()
    install(FILES ${file} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT player)
  endforeach()
else()
  set(CMAKE_INSTALL_SYSTEM_RUNTIME_COMPONENT player)
  include(InstallRequiredSystemLibraries)
endif()

install(FILES ${PROJECT_SOURCE_DIR}/packaging/windows/THIRD-PARTY.txt
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT player)
