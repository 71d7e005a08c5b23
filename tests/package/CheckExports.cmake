# LIBRARY's dynamic symbol table defines exactly the seven functions, and it is called SONAME.

set(expected
  Xelt_ClearDraw Xelt_Create Xelt_CreateEx Xelt_GetParam Xelt_Release Xelt_SetParam Xelt_ShowYuvFrame)

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE table COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${table}")
set(names)
foreach(line IN LISTS lines)
  if(NOT line MATCHES "^[0-9a-f]+ T ([^ ]+)$")
    message(FATAL_ERROR "exported besides the functions: ${line}")
  endif()
  list(APPEND names ${CMAKE_MATCH_1})
endforeach()
list(SORT names)
if(NOT names STREQUAL expected)
  message(FATAL_ERROR "exported: ${names}\nexpected: ${expected}")
endif()

execute_process(COMMAND ${READELF} -d ${LIBRARY} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "\\(SONAME\\)[^\n]*\\[([^]]+)\\]")
  message(FATAL_ERROR "${LIBRARY} has no SONAME")
endif()
if(NOT CMAKE_MATCH_1 STREQUAL SONAME)
  message(FATAL_ERROR "SONAME is ${CMAKE_MATCH_1}, expected ${SONAME}")
endif()
