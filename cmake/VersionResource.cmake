# pryxa_add_version_resource(TARGET "File description")
# Gives a DLL or program of the product the version resource that Windows shows in the
# file's properties: company, product, this description, and the build's one version
# number (pryxa/Version.h, from the top-level project()) as file and product version.
set(PRYXA_VERSION_RC_TEMPLATE ${CMAKE_CURRENT_LIST_DIR}/VersionInfo.rc.in)

function(pryxa_add_version_resource target description)
  set(PRYXA_VERSION_TARGET ${target})
  set(PRYXA_VERSION_DESCRIPTION ${description})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(PRYXA_VERSION_FILE_TYPE VFT_APP)
  else()
    set(PRYXA_VERSION_FILE_TYPE VFT_DLL)
  endif()
  # configure_file fills in the target's values; file(GENERATE) then its file names.
  set(rc ${CMAKE_CURRENT_BINARY_DIR}/${target}.version.rc)
  configure_file(${PRYXA_VERSION_RC_TEMPLATE} ${rc}.in @ONLY)
  file(GENERATE OUTPUT ${rc} INPUT ${rc}.in)
  target_sources(${target} PRIVATE ${rc})
  set_source_files_properties(${rc} PROPERTIES
    INCLUDE_DIRECTORIES ${CMAKE_BINARY_DIR}/generated
    OBJECT_DEPENDS ${CMAKE_BINARY_DIR}/generated/pryxa/Version.h)
endfunction()
