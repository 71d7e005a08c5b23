# LIBRARY exports exactly the seven functions under their plain names, and is linked to no EGL library: EGL's functions
# are looked up in the one that Qt has loaded, and a host on desktop OpenGL may have none.

set(expected
  Xelt_ClearDraw Xelt_Create Xelt_CreateEx Xelt_GetParam Xelt_Release Xelt_SetParam Xelt_ShowYuvFrame)

execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCH "Ordinal/Name Pointer. Table[^\n]*\n([^\n]*[^\n ][^\n]*\n)+" table "${headers}")
string(REGEX MATCHALL "[A-Za-z_@?$0-9]+\n" names "${table}")
string(REPLACE "\n" "" names "${names}")
list(FILTER names EXCLUDE REGEX "^Table$")
list(SORT names)
if(NOT names STREQUAL expected)
  message(FATAL_ERROR "exported: ${names}\nexpected: ${expected}")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]*" modules "${headers}")
if(NOT modules OR modules MATCHES "[Ee][Gg][Ll]|GLES")
  message(FATAL_ERROR "linked: ${modules}")
endif()
