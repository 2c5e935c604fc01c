# Installs the build into a prefix, builds the host next to it with find_package, runs it, moves the prefix and runs it again:
# library and resource bundle have to be found in both places.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " line)
    message(FATAL_ERROR "${line}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_greeting prefix)
  file(GLOB_RECURSE library ${prefix}/*/libKestrelService.so)
  get_filename_component(folder "${library}" DIRECTORY)
  run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${folder} LC_ALL=C LANGUAGE=de ${WORK}/host/outside_host)
  # The last line says where the texts come from: the build tree must not be what serves the host.
  if(NOT output MATCHES "^Organization/7 Vehicle/3 Öffentlich\n6 7\n${prefix}/")
    message(FATAL_ERROR "The host printed: ${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${HOST} -B ${WORK}/host -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
  -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_BUILD_TYPE=Debug)
run(${CMAKE_COMMAND} --build ${WORK}/host)
expect_greeting(${WORK}/prefix)
file(RENAME ${WORK}/prefix ${WORK}/moved)
expect_greeting(${WORK}/moved)

# gdb finds the printers of the values by their place beside the library.
find_program(GDB gdb)
if(GDB)
  run(${GDB} --configuration)
endif()
if(GDB AND output MATCHES "--with-python")
  file(GLOB_RECURSE library ${WORK}/moved/*/libKestrelService.so)
  run(${GDB} -nx -batch -iex "add-auto-load-safe-path ${WORK}/moved" -ex "info pretty-printer" ${library})
  if(NOT output MATCHES "\n  KestrelService\n")
    message(FATAL_ERROR "gdb does not find the printers: ${output}")
  endif()
endif()
file(REMOVE_RECURSE ${WORK})
