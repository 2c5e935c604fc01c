# The programs that the documents show: each becomes an executable and a test, so that what a reader copies works as it
# stands. A block of the language "cpp" is a whole program, with its includes and its main; pieces of code are blocks of the
# language "c++". A block of the language "text" right behind the line "It prints" is what the program before it prints.

# Takes the next block of that language off `rest`, `consumed` being what stood before: gives its content as `block` and
# the line on which that starts as `line`; `found` says whether there is one.
macro(kestrel_next_block language)
  string(FIND "${rest}" "\n```${language}\n" start)
  set(found FALSE)
  if(NOT start EQUAL -1)
    set(found TRUE)
    string(LENGTH "\n```${language}\n" length)
    math(EXPR start "${start} + ${length}")
    string(SUBSTRING "${rest}" 0 ${start} before)
    string(APPEND consumed "${before}")
    string(SUBSTRING "${rest}" ${start} -1 rest)
    string(FIND "${rest}" "\n```\n" end)
    string(SUBSTRING "${rest}" 0 ${end} block)
    string(REGEX MATCHALL "\n" lines "${consumed}")
    list(LENGTH lines line)
    math(EXPR line "${line} + 1")
  endif()
endmacro()

# Writes a file unless it has that content already, so that nothing is compiled anew for nothing.
function(kestrel_write_changed file content)
  if(EXISTS ${file})
    file(READ ${file} present)
    if(present STREQUAL content)
      return()
    endif()
  endif()
  file(WRITE ${file} "${content}")
endfunction()

# Adds the programs of a document. Their tests are named after it and the heading above the program.
function(kestrel_add_document_programs document)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
  get_filename_component(name ${document} NAME_WE)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/documents/${name})
  file(READ ${document} rest)
  set(consumed)
  set(number 0)
  while(TRUE)
    kestrel_next_block(cpp)
    if(NOT found)
      break()
    endif()
    math(EXPR number "${number} + 1")
    if(NOT "\n${block}\n" MATCHES "\nint main\\(\\) {\n")
      message(FATAL_ERROR "${document}:${line}: a block of the language cpp has to be a whole program; pieces of one are c++.")
    endif()
    string(REGEX REPLACE ".*\n#+ ([^\n]*)\n.*" "\\1" heading "\n${consumed}")
    string(TOLOWER "${heading}" heading)
    string(REGEX REPLACE "[^a-z0-9]+" "_" heading "${heading}")
    set(target document_${name}_${number}_${heading})
    kestrel_write_changed(${work}/${target}.cpp "#line ${line} \"${document}\"\n${block}\n")
    set(expected)
    string(SUBSTRING "${rest}" ${end} -1 behind)
    if(behind MATCHES "^\n```\n\nIt prints\n\n```text\n")
      string(REGEX REPLACE "^\n```\n\nIt prints\n\n```text\n" "" behind "${behind}")
      string(FIND "${behind}" "\n```\n" end)
      string(SUBSTRING "${behind}" 0 ${end} output)
      set(expected ${work}/${target}.txt)
      kestrel_write_changed(${expected} "${output}\n")
    endif()

    add_executable(${target} ${work}/${target}.cpp)
    target_link_libraries(${target} PRIVATE KestrelBuildFlags Kestrel::Service Kestrel::Testing)
    # What counts is that they build, and what they print.
    target_compile_options(${target} PRIVATE -O0 -g0)
    add_test(NAME Document.${name}_${number}_${heading}
      COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${target}> -DEXPECTED=${expected} -DWORK=${work}/${target}_home
        -P ${CMAKE_CURRENT_SOURCE_DIR}/docs/run_program.cmake)
    set_tests_properties(Document.${name}_${number}_${heading} PROPERTIES TIMEOUT 120 ENVIRONMENT "${KESTREL_TEST_ENVIRONMENT}")
  endwhile()
endfunction()

file(GLOB KESTREL_DOCUMENTS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/*.md ${PROJECT_SOURCE_DIR}/docs/*.md)
foreach(document IN LISTS KESTREL_DOCUMENTS)
  kestrel_add_document_programs(${document})
endforeach()

# Their links lead somewhere.
add_test(NAME Document.linksLeadSomewhere
  COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -P ${CMAKE_CURRENT_SOURCE_DIR}/docs/links.cmake)
