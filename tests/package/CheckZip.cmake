# CPack makes one zip of BUILD. Its folder, unpacked as OUT/unpacked, holds these files and no others, and its
# XeltRender.dll exports the seven functions alone and says its VERSION.

cmake_minimum_required(VERSION 3.18)
file(REMOVE_RECURSE ${OUT})
execute_process(COMMAND ${CPACK} --config ${BUILD}/CPackConfig.cmake -G ZIP -B ${OUT} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archives ${OUT}/*.zip)
list(LENGTH archives count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "${count} archives: ${archives}")
endif()
get_filename_component(name ${archives} NAME)
string(REGEX REPLACE "\\.zip$" "" name ${name})
file(MAKE_DIRECTORY ${OUT}/content)
execute_process(COMMAND ${CMAKE_COMMAND} -E tar xf ${archives} WORKING_DIRECTORY ${OUT}/content
  COMMAND_ERROR_IS_FATAL ANY)

set(root ${OUT}/unpacked)
file(RENAME ${OUT}/content/${name} ${root})
file(GLOB_RECURSE files RELATIVE ${root} ${root}/*)
set(expected
  bin/Ombrix.dll bin/Qt5Core.dll bin/Qt5Gui.dll bin/Qt5Widgets.dll bin/XeltRender.dll bin/libEGL.dll
  bin/libGLESv2.dll bin/libgcc_s_seh-1.dll bin/libstdc++-6.dll bin/libwinpthread-1.dll
  bin/platforms/qwindows.dll bin/xeltplay.exe
  include/XeltRender.h include/XeltRender.hpp
  lib/cmake/XeltRender/XeltRenderConfig.cmake lib/cmake/XeltRender/XeltRenderConfigVersion.cmake
  lib/cmake/XeltRender/XeltRenderTargets.cmake lib/libXeltRender.dll.a lib/pkgconfig/XeltRender.pc
  share/doc/XeltRender/CHANGELOG.md share/doc/XeltRender/LICENSE share/doc/XeltRender/README.md
  share/doc/XeltRender/THIRD-PARTY.txt)
list(FILTER files EXCLUDE REGEX "/XeltRenderTargets-[a-z]+\\.cmake$") # named for the build type
list(SORT files)
list(SORT expected)
if(NOT files STREQUAL expected)
  message(FATAL_ERROR "in ${archives}: ${files}\nexpected: ${expected}")
endif()

# What a program needs beside it is there: the rest of what is imported comes with every Windows.
set(system
  advapi32 d3d11 d3d9 dwmapi dxgi gdi32 imm32 kernel32 mpr msvcrt netapi32 ole32 shell32 user32 userenv uxtheme
  version winmm ws2_32 wtsapi32)
file(GLOB binaries ${root}/bin/*.exe ${root}/bin/*.dll ${root}/bin/platforms/*.dll)
foreach(binary IN LISTS binaries)
  execute_process(COMMAND ${OBJDUMP} -p ${binary} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "DLL Name: [^\n]*" imports "${headers}")
  if(NOT imports)
    message(FATAL_ERROR "no imports in ${binary}:\n${headers}")
  endif()
  foreach(import IN LISTS imports)
    string(REGEX REPLACE "^DLL Name: *" "" import ${import})
    string(REGEX REPLACE "\\.dll$" "" lower ${import})
    string(TOLOWER ${lower} lower)
    if(NOT lower IN_LIST system AND NOT EXISTS ${root}/bin/${import})
      message(FATAL_ERROR "${binary} needs ${import}, which is not in ${archives}")
    endif()
  endforeach()
endforeach()

set(LIBRARY ${root}/bin/XeltRender.dll)
include(${CMAKE_CURRENT_LIST_DIR}/CheckExportsWindows.cmake)

# The version resource is text in UTF-16: each character, then a zero byte.
file(READ ${LIBRARY} bytes HEX)
foreach(text "ProductVersion" "${VERSION}" "OriginalFilename" "XeltRender.dll")
  string(HEX "${text}" hex)
  string(REGEX REPLACE "(..)" "\\100" hex "${hex}")
  string(FIND "${bytes}" "${hex}0000" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "XeltRender.dll has no version resource with '${text}'")
  endif()
endforeach()
