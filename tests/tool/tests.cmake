if(TARGET ry_jointtools)
  ry_test(tool OFFSCREEN LIBS ry_jointtools rycore)
  # The next run of a program that uses the tool.
  add_executable(tst_tool_settings ${CMAKE_CURRENT_SOURCE_DIR}/tool/programs/printToolSettings.cpp)
  target_include_directories(tst_tool_settings PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(tst_tool_settings PRIVATE ry_compile_options ry_jointtools rycore)
  target_compile_definitions(tst_tool PRIVATE RY_SETTINGS_PROGRAM="$<TARGET_FILE:tst_tool_settings>")
  add_dependencies(tst_tool tst_tool_settings)
endif()
