# Runs a program of a document, with preferences of its own, and fails when it does not exit with 0, or, where the document
# says what it prints, prints something else.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} -E env XDG_CONFIG_HOME=${WORK} ${PROGRAM}
  WORKING_DIRECTORY ${WORK} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors TIMEOUT 60)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "It ends with ${result} and prints: ${output}${errors}")
endif()
if(EXPECTED)
  file(READ ${EXPECTED} expected)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "It prints:\n${output}and not:\n${expected}")
  endif()
endif()
