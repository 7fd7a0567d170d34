# What "plaz hub set sample" makes its repositories of.
set(sample_hub ${PROJECT_BINARY_DIR}/share/plaz/data/sample-hub)
file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/sample-hub/*)
add_custom_command(
  OUTPUT ${sample_hub}/plaz.json
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${sample_hub}
  COMMAND python3 -B ${PROJECT_SOURCE_DIR}/scripts/make-sample-hub --bundles ${sample_hub}
  DEPENDS ${sources} ${PROJECT_SOURCE_DIR}/scripts/make-sample-hub
  COMMENT "Packing the sample hub"
  VERBATIM)
add_custom_target(sample_hub ALL DEPENDS ${sample_hub}/plaz.json)
add_dependencies(plaz_lib sample_hub) # it is of use to whatever has the library
install(DIRECTORY ${sample_hub} DESTINATION ${CMAKE_INSTALL_DATADIR}/plaz/data)
