if(TARGET RyJointTools)
  ry_test(plugin OFFSCREEN LIBS rycore)
  # A library that answers the version question wrongly and notes whether it was asked for more.
  add_library(tst_plugin_outdated MODULE ${CMAKE_CURRENT_SOURCE_DIR}/plugin/libraries/RyOutdatedPlugin.cpp)
  target_include_directories(tst_plugin_outdated PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(tst_plugin_outdated PRIVATE rycore)
  # Unloads the library in a process of its own.
  add_executable(tst_plugin_unloading ${CMAKE_CURRENT_SOURCE_DIR}/plugin/programs/unloadPlugin.cpp)
  target_include_directories(tst_plugin_unloading PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(tst_plugin_unloading PRIVATE ry_compile_options rycore Qt5::Widgets)
  target_compile_definitions(tst_plugin PRIVATE
    RY_UNLOADING_PROGRAM="$<TARGET_FILE:tst_plugin_unloading>"
    RY_PLUGIN_FILE="$<TARGET_FILE:RyJointTools>"
    RY_OUTDATED_PLUGIN_FILE="$<TARGET_FILE:tst_plugin_outdated>")
  add_dependencies(tst_plugin RyJointTools tst_plugin_outdated tst_plugin_unloading)
endif()
