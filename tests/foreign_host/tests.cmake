# Foreign files in the window.
ry_test(foreign_host GL LIBS ry_ryhost ry_pointer_driver rycore SOURCES
  ${CMAKE_SOURCE_DIR}/tests/foreign/ForeignStage.cpp ${CMAKE_SOURCE_DIR}/tests/host/WindowStage.cpp)
add_dependencies(tst_foreign_host ryhost RyJointTools bad_foreign_reader)
