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

function(expect_greeting prefix program)
  file(GLOB_RECURSE library ${prefix}/*/libKestrelService.so)
  get_filename_component(folder "${library}" DIRECTORY)
  run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${folder} LC_ALL=C LANGUAGE=de ${program})
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
expect_greeting(${WORK}/prefix ${WORK}/host/outside_host)
file(RENAME ${WORK}/prefix ${WORK}/moved)
expect_greeting(${WORK}/moved ${WORK}/host/outside_host)

# The same host by pkg-config, from where the installation lies now.
file(GLOB_RECURSE pc ${WORK}/moved/*/KestrelTesting.pc)
get_filename_component(folder "${pc}" DIRECTORY)
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${folder} pkg-config --cflags --libs KestrelTesting)
string(STRIP "${output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${COMPILER} -std=c++23 ${HOST}/main.cpp ${HOST}/host_record.cpp -o ${WORK}/by_pkg_config ${flags})
expect_greeting(${WORK}/moved ${WORK}/by_pkg_config)

# What a shared library exports is its own: nothing of the libraries that it is made with.
file(GLOB_RECURSE library ${WORK}/moved/*/libKestrelService.so)
if(library)
  run(nm --dynamic --defined-only --demangle --format=posix ${library})
  string(REGEX MATCHALL "[^\n]+" symbols "${output}")
  list(FILTER symbols EXCLUDE REGEX "kestrel::")
  if(symbols)
    list(SUBLIST symbols 0 10 symbols)
    list(JOIN symbols "\n" symbols)
    message(FATAL_ERROR "The library exports what is not its own:\n${symbols}")
  endif()
endif()
file(REMOVE_RECURSE ${WORK})
