# The tests of the console program start it as people do.
if(TARGET tools_tests AND TARGET dwadmin)
  target_compile_definitions(tools_tests PRIVATE DWADMIN_PROGRAM="$<TARGET_FILE:dwadmin>")
  add_dependencies(tools_tests dwadmin)
endif()
