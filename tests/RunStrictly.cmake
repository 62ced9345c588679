# cmake -DPROGRAM=... -P RunStrictly.cmake
#
# Runs one test program and fails for a warning of Qt's as for a failed check. What the offscreen platform says of
# itself, and the web engine of its missing graphics card, does not count: it is about a screen that is not there.
execute_process(COMMAND ${PROGRAM} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output
  ECHO_OUTPUT_VARIABLE ECHO_ERROR_VARIABLE)
string(REGEX REPLACE "[^\n]*(This plugin does not support [^\n]*|WebEngineContext used before[^\n]*|No suitable graphics backend found)\n" "" output "${output}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with: ${result}")
endif()
if(output MATCHES "(QWARN|QCRITICAL|QFATAL) [^\n]*")
  message(FATAL_ERROR "a warning: ${CMAKE_MATCH_0}")
endif()
