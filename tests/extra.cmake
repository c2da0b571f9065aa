# The tests of the console program start it as people do.
if(TARGET tools_tests AND TARGET dwadmin)
  target_compile_definitions(tools_tests PRIVATE DWADMIN_PROGRAM="$<TARGET_FILE:dwadmin>")
  add_dependencies(tools_tests dwadmin)
endif()
# The help pages are tested where they are written.
foreach(program shell_tests shell_forms_tests)
  if(TARGET ${program})
    target_compile_definitions(${program} PRIVATE HELP_PAGES="${CMAKE_SOURCE_DIR}/help")
  endif()
endforeach()
# The program is started as people start it.
if(TARGET shell_forms_tests AND TARGET drovewright)
  target_compile_definitions(shell_forms_tests PRIVATE DROVEWRIGHT_PROGRAM="$<TARGET_FILE:drovewright>")
  add_dependencies(shell_forms_tests drovewright)
endif()
