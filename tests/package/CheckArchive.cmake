# CPack makes one archive of BUILD, and it holds what a host needs.

file(REMOVE_RECURSE ${OUT})
execute_process(COMMAND ${CPACK} --config ${BUILD}/CPackConfig.cmake -G TGZ -B ${OUT} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archives ${OUT}/*.tar.gz)
list(LENGTH archives count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "${count} archives: ${archives}")
endif()

execute_process(COMMAND ${CMAKE_COMMAND} -E tar tzf ${archives} OUTPUT_VARIABLE content COMMAND_ERROR_IS_FATAL ANY)
foreach(file
    libXeltRender.so libXeltRender.so.1 XeltRender.h XeltRender.hpp XeltRender.pc
    XeltRenderConfig.cmake XeltRenderConfigVersion.cmake XeltRenderTargets.cmake LICENSE README.md CHANGELOG.md)
  string(REPLACE "." "\\." pattern ${file})
  if(NOT content MATCHES "/${pattern}\n")
    message(FATAL_ERROR "${file} is not in ${archives}:\n${content}")
  endif()
endforeach()
