# gdb shows values by the printers of the library. The program is compiled without optimisation, so that nothing is optimised
# away that is asked for; the sanitizers would look at the memory that no value was made in.
if(NOT KESTREL_SANITIZE)
  find_program(KESTREL_GDB gdb)
  add_executable(kestrel_debugged_values gdb/values.cpp)
  target_compile_options(kestrel_debugged_values PRIVATE -O0 -g)
  target_link_libraries(kestrel_debugged_values PRIVATE KestrelBuildFlags Kestrel::Service)
  add_test(NAME Debugger.showsValuesAsPeopleReadThem
    COMMAND ${CMAKE_COMMAND} -DGDB=${KESTREL_GDB} -DPROGRAM=$<TARGET_FILE:kestrel_debugged_values>
      -DLIBRARY=$<TARGET_FILE:KestrelService> -DPRINTERS=${PROJECT_SOURCE_DIR}/kestrel/gdb/kestrel_printers.py
      -P ${CMAKE_CURRENT_SOURCE_DIR}/gdb/show_values.cmake)
  set_tests_properties(Debugger.showsValuesAsPeopleReadThem PROPERTIES TIMEOUT 300 SKIP_REGULAR_EXPRESSION "Skipped: "
    ENVIRONMENT "${KESTREL_TEST_ENVIRONMENT}")
endif()
