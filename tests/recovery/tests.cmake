# Unsaved work is kept without a display too, so that these run without one.
set(edits ${CMAKE_SOURCE_DIR}/tests/io/RigEdits.cpp)
ry_test(recovery OFFSCREEN LIBS ry_ryhost rycore ry_evaluator SOURCES ${edits}
  ${CMAKE_SOURCE_DIR}/tests/io/CharacterScene.cpp ${CMAKE_SOURCE_DIR}/tests/io/FigureSketch.cpp
  ${CMAKE_SOURCE_DIR}/tests/parametric_files/LegacyArm.cpp ${CMAKE_SOURCE_DIR}/tests/foreign/ForeignSketch.cpp
  ${CMAKE_SOURCE_DIR}/tests/foreign/FbxSketch.cpp)
# It reads foreign files.
add_dependencies(tst_recovery ryhost ryforeign)
# A program that edits until it is killed.
add_executable(recovery_session ${CMAKE_CURRENT_LIST_DIR}/session/main.cpp
  ${CMAKE_CURRENT_LIST_DIR}/session/DiskWaits.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RandomEdits.cpp ${edits})
target_include_directories(recovery_session PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(recovery_session PRIVATE ry_compile_options ry_ryhost rycore)
target_compile_definitions(tst_recovery PRIVATE RY_RECOVERY_SESSION="$<TARGET_FILE:recovery_session>")
add_dependencies(tst_recovery recovery_session)
