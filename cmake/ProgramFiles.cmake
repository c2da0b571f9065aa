# The files beside the program: the help pages and the picture of the main window. ReportDefinitions.cmake puts the
# definitions of reports there.
add_executable(dwpicture EXCLUDE_FROM_ALL
  ${CMAKE_SOURCE_DIR}/tools/picture/main.cpp
  ${CMAKE_SOURCE_DIR}/tools/picture/Landscape.cpp
  ${CMAKE_SOURCE_DIR}/tools/picture/Vehicles.cpp)
target_include_directories(dwpicture PRIVATE ${CMAKE_SOURCE_DIR})
target_link_libraries(dwpicture PRIVATE Qt6::Gui warnings)

# drovewright_program_files(<target>): keeps them beside the program of that target. If a page was edited, added or
# removed, or the picture is drawn differently, the next build of the target copies them.
function(drovewright_program_files target)
  file(GLOB pages CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/help/*)
  set(help_done ${CMAKE_CURRENT_BINARY_DIR}/${target}-help.stamp)
  # A list of the pages, written only when it changes, so that the build notices a removed page too.
  set(help_list ${CMAKE_CURRENT_BINARY_DIR}/${target}-help.list)
  file(CONFIGURE OUTPUT ${help_list} CONTENT "${pages}\n" @ONLY)
  add_custom_command(OUTPUT ${help_done}
    COMMAND ${CMAKE_COMMAND} -E rm -rf $<TARGET_FILE_DIR:${target}>/help
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${CMAKE_SOURCE_DIR}/help $<TARGET_FILE_DIR:${target}>/help
    COMMAND ${CMAKE_COMMAND} -E touch ${help_done}
    DEPENDS ${pages} ${help_list}
    COMMENT "Copying the help pages"
    VERBATIM)
  set(picture_done ${CMAKE_CURRENT_BINARY_DIR}/${target}-picture.stamp)
  add_custom_command(OUTPUT ${picture_done}
    COMMAND dwpicture $<TARGET_FILE_DIR:${target}>/DW.BMP
    COMMAND ${CMAKE_COMMAND} -E touch ${picture_done}
    DEPENDS dwpicture
    COMMENT "Drawing DW.BMP"
    VERBATIM)
  add_custom_target(${target}-files ALL DEPENDS ${help_done} ${picture_done})
  add_dependencies(${target} ${target}-files)
endfunction()
