# `release-folder` makes "Drovewright Release" in the build folder: the files of the release disc beside the
# program's own, where the first installation ("CD Install") looks for them. The data files are made again each time, so
# that a disc never contains data of a real fleet.
add_executable(systemfile EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/tools/release/SystemFile.cpp)
target_link_libraries(systemfile PRIVATE core warnings)

set(release "${CMAKE_BINARY_DIR}/Drovewright Release")
add_custom_target(release-folder
  COMMAND ${CMAKE_COMMAND} -E rm -rf "${release}"
  COMMAND ${CMAKE_COMMAND} -E make_directory "${release}"
  COMMAND dwadmin create --data "${release}/DW Initialized Data Files"
  COMMAND systemfile "${release}/PK Initialized Data Files"
  # A newly made file has an empty journal beside it.
  COMMAND ${CMAKE_COMMAND} -E rm -f "${release}/PK Initialized Data Files/BFSYS.MDB-journal"
  COMMAND ${CMAKE_COMMAND} -E copy "${CMAKE_SOURCE_DIR}/tools/release/Read Me.txt" "${release}"
  COMMENT "Making ${release}"
  VERBATIM)
unset(release)
