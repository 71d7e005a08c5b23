# Installs BUILD into STAGE, anew, so that a file which is no longer installed is missed.
file(REMOVE_RECURSE ${STAGE})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${STAGE} COMMAND_ERROR_IS_FATAL ANY)
