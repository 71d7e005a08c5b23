# Flags for everything built here, and the export list of the library.

add_library(xelt_build_flags INTERFACE)
target_compile_features(xelt_build_flags INTERFACE cxx_std_17)
target_compile_definitions(xelt_build_flags INTERFACE QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)
if(MSVC)
  target_compile_options(xelt_build_flags INTERFACE /W4 /utf-8 $<$<BOOL:${XELT_WERROR}>:/WX>)
else()
  target_compile_options(xelt_build_flags INTERFACE
    -Wall -Wextra -Wconversion -Wshadow $<$<BOOL:${XELT_WERROR}>:-Werror>)
endif()
if(XELT_SANITIZE STREQUAL "address")
  set(_xelt_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
elseif(XELT_SANITIZE STREQUAL "thread")
  set(_xelt_sanitizers -fsanitize=thread -fno-omit-frame-pointer)
elseif(XELT_SANITIZE)
  message(FATAL_ERROR "XELT_SANITIZE is '${XELT_SANITIZE}'; it takes address or thread")
endif()
if(_xelt_sanitizers)
  target_compile_options(xelt_build_flags INTERFACE ${_xelt_sanitizers} -g)
  target_link_options(xelt_build_flags INTERFACE ${_xelt_sanitizers})
endif()

# The Direct3D 11 and DXGI interface declarations. Elsewhere than on Windows only the declarations of Wine's
# development package are used: nothing of it is linked.
add_library(xelt_d3d11_headers INTERFACE)
target_compile_definitions(xelt_d3d11_headers INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
if(NOT WIN32)
  find_path(XELT_D3D11_INCLUDE_DIR d3d11.h
    PATH_SUFFIXES wine/wine/windows wine/windows
    DOC "Folder of d3d11.h and dxgi.h")
  if(NOT XELT_D3D11_INCLUDE_DIR)
    message(FATAL_ERROR "d3d11.h is missing; it comes with Wine's development headers (libwine-dev)")
  endif()
  mark_as_advanced(XELT_D3D11_INCLUDE_DIR)
  target_include_directories(xelt_d3d11_headers SYSTEM INTERFACE ${XELT_D3D11_INCLUDE_DIR})
endif()

# The names in LIST_FILE, one a line, become a linker version script and a module definition file.
function(xelt_generate_export_lists LIST_FILE)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${LIST_FILE})
  file(STRINGS ${LIST_FILE} names REGEX "^[A-Za-z_]")
  list(JOIN names ";\n    " mapNames)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/XeltRender.map
       CONTENT "{\n  global:\n    @mapNames@;\n  local:\n    *;\n};\n" @ONLY)
  list(JOIN names "\n  " defNames)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/XeltRender.def CONTENT "EXPORTS\n  @defNames@\n" @ONLY)
endfunction()

function(xelt_apply_export_list TARGET)
  if(WIN32)
    target_sources(${TARGET} PRIVATE ${PROJECT_BINARY_DIR}/XeltRender.def)
  else()
    target_link_options(${TARGET} PRIVATE LINKER:--version-script=${PROJECT_BINARY_DIR}/XeltRender.map)
    set_target_properties(${TARGET} PROPERTIES LINK_DEPENDS ${PROJECT_BINARY_DIR}/XeltRender.map)
    if(NOT XELT_SANITIZE)
      target_link_options(${TARGET} PRIVATE LINKER:-z,defs)
    endif()
  endif()
endfunction()
