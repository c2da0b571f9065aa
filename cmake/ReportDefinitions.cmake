# The definitions of reports, beside the program and dwadmin, which share a folder. An edited one is copied by the next
# build; a report reads its definition anew at each run.
file(GLOB definitions CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/reports/definitions/*.rpt)
set(definitions_done ${CMAKE_BINARY_DIR}/report-definitions.stamp)
add_custom_command(OUTPUT ${definitions_done}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/program
  COMMAND ${CMAKE_COMMAND} -E copy ${definitions} ${CMAKE_BINARY_DIR}/program
  COMMAND ${CMAKE_COMMAND} -E touch ${definitions_done}
  DEPENDS ${definitions}
  COMMENT "Copying the report definitions"
  VERBATIM)
add_custom_target(report-definitions ALL DEPENDS ${definitions_done})
