# Has gdb stop PROGRAM and show its values as commands.gdb asks, and fails when that is not expected.txt. Skipped where gdb
# is missing, has no Python, or may not trace processes, as in many containers.
cmake_minimum_required(VERSION 3.25)
set(folder ${CMAKE_CURRENT_LIST_DIR})

if(NOT GDB)
  message(STATUS "Skipped: gdb is not installed.")
  return()
endif()
execute_process(COMMAND ${GDB} -nx -batch -ex "python print('Python ' + 'works')" OUTPUT_VARIABLE output ERROR_QUIET)
if(NOT output MATCHES "Python works")
  message(STATUS "Skipped: gdb is built without Python.")
  return()
endif()

# With a shared library gdb has to find the printers itself.
get_filename_component(library_folder ${LIBRARY} DIRECTORY)
set(loading -iex "add-auto-load-safe-path ${library_folder}")
if(NOT LIBRARY MATCHES "\\.so")
  set(loading -iex "source ${PRINTERS}")
endif()
execute_process(COMMAND ${GDB} -nx -batch ${loading} -x ${folder}/commands.gdb ${PROGRAM}
  OUTPUT_VARIABLE output ERROR_VARIABLE errors TIMEOUT 240)
if("${output}${errors}" MATCHES "(ptrace: |Could not trace|Cannot create process|Cannot PTRACE)[^\n]*")
  message(STATUS "Skipped: gdb may not trace a process here (${CMAKE_MATCH_0}).")
  return()
endif()

# Lines of the source move. What stands behind the last heading only has to be survived.
string(REGEX REPLACE "^.*(---- a frame\n)" "\\1" shown "${output}")
string(REGEX REPLACE "---- survived\n.*$" "" shown "${shown}")
string(REGEX REPLACE " at values.cpp:[0-9]+" "" shown "${shown}")
file(READ ${folder}/expected.txt expected)
if(NOT shown STREQUAL expected)
  message(FATAL_ERROR "gdb shows:\n${shown}\nand not:\n${expected}\nIt says: ${errors}")
endif()
if(NOT output MATCHES "---- survived\n.*contactID = ")
  message(FATAL_ERROR "gdb does not come to the end:\n${output}\n${errors}")
endif()
if("${output}${errors}" MATCHES "Python Exception|Traceback|internal-error")
  message(FATAL_ERROR "A printer throws:\n${output}\n${errors}")
endif()
