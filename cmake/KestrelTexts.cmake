# The library's resource bundle: the texts of every language, compiled from kestrel/localization/po.
#
#   kestrel_add_texts(TARGET DOMAIN NAME LANGUAGES LANGUAGE...)
#
# Compiles po/LANGUAGE.po of the calling directory into DOMAIN.bundle/LANGUAGE/LC_MESSAGES/DOMAIN.mo whenever TARGET is built,
# and installs the bundle below the data directory. A table with a malformed entry, or with a translation whose placeholders
# are not those of its text, stops the build.
#
# The marker bundle.conf says that the bundle is there and what has to be in it, because a reader cannot tell a language without
# texts from one whose file got lost. TARGET gets a source with the bundle's places, generated from bundle_paths.cpp.in.
#
# In the build tree the bundle lies as it does in an installation, PROJECT/share/KestrelService, so that a library in
# PROJECT/kestrel and a program in PROJECT/tests find it in the same way as installed ones.

find_program(KESTREL_MSGFMT msgfmt REQUIRED DOC "Compiler of message catalogues, of GNU gettext")

function(kestrel_add_texts target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DOMAIN" "LANGUAGES")

  # Seen from the prefix. An absolute data directory cannot move with the prefix; it is found as the configured place.
  set(KESTREL_DATA_DIRECTORY ${CMAKE_INSTALL_DATADIR})
  if(IS_ABSOLUTE "${KESTREL_DATA_DIRECTORY}")
    set(KESTREL_DATA_DIRECTORY share)
  endif()
  set(KESTREL_INSTALLED_BUNDLES ${CMAKE_INSTALL_FULL_DATADIR}/KestrelService)
  set(KESTREL_BUILT_BUNDLES ${PROJECT_BINARY_DIR}/${KESTREL_DATA_DIRECTORY}/KestrelService)
  configure_file(bundle_paths.cpp.in bundle_paths.cpp @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/bundle_paths.cpp)

  set(bundle ${KESTREL_BUILT_BUNDLES}/${arg_DOMAIN}.bundle)
  set(installed_bundle ${CMAKE_INSTALL_DATADIR}/KestrelService/${arg_DOMAIN}.bundle)
  list(JOIN arg_LANGUAGES " " languages)
  file(CONFIGURE OUTPUT ${bundle}/bundle.conf @ONLY NEWLINE_STYLE UNIX CONTENT
"identifier=@arg_DOMAIN@
version=@PROJECT_VERSION@
languages=@languages@
")
  install(FILES ${bundle}/bundle.conf DESTINATION ${installed_bundle})

  set(catalogues)
  foreach(language IN LISTS arg_LANGUAGES)
    set(table ${CMAKE_CURRENT_SOURCE_DIR}/po/${language}.po)
    set(folder ${bundle}/${language}/LC_MESSAGES)
    set(catalogue ${folder}/${arg_DOMAIN}.mo)
    add_custom_command(OUTPUT ${catalogue}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
      COMMAND ${KESTREL_MSGFMT} --check --output-file=${catalogue} ${table}
      DEPENDS ${table}
      COMMENT "Compiling texts: ${language}"
      VERBATIM)
    list(APPEND catalogues ${catalogue})
    install(FILES ${catalogue} DESTINATION ${installed_bundle}/${language}/LC_MESSAGES)
  endforeach()
  add_custom_target(${target}Texts ALL DEPENDS ${catalogues})
  add_dependencies(${target} ${target}Texts)
endfunction()
