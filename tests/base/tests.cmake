ry_test(base LIBS rycore_base ry_test_core)

# Libraries that a plug-in manager must take or refuse, one folder each: tests copy them where they need them.
function(ry_fake_plugin name)
  add_library(fake_plugin_${name} MODULE ${CMAKE_SOURCE_DIR}/tests/base/helpers/FakePlugin.cpp)
  target_include_directories(fake_plugin_${name} PRIVATE ${CMAKE_SOURCE_DIR}/src)
  target_compile_definitions(fake_plugin_${name} PRIVATE FAKE_NAME="${name}" ${ARGN})
  target_link_libraries(fake_plugin_${name} PRIVATE ry_compile_options rycore_base)
  set_target_properties(fake_plugin_${name} PROPERTIES PREFIX "" OUTPUT_NAME ${name} CXX_VISIBILITY_PRESET hidden
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/testplugins)
  add_dependencies(tst_base fake_plugin_${name})
endfunction()
ry_fake_plugin(good)
ry_fake_plugin(other_version FAKE_VERSION=4,22,0,8)
ry_fake_plugin(no_version FAKE_NO_VERSION)
ry_fake_plugin(no_definition FAKE_NO_DEFINITION)
ry_fake_plugin(null_definition FAKE_NULL_DEFINITION)
ry_fake_plugin(unresolved FAKE_UNRESOLVED)

# Reads and writes settings in a process of its own.
add_executable(settings_probe ${CMAKE_SOURCE_DIR}/tests/base/helpers/SettingsProbe.cpp)
target_link_libraries(settings_probe PRIVATE ry_compile_options rycore_base)
add_dependencies(tst_base settings_probe)
