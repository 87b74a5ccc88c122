find_program(RY_PYTHON python3 REQUIRED)
set(graph ${CMAKE_BINARY_DIR}/layers.txt)
ry_write_graph(${graph})
set(widget_headers ${Qt5Widgets_INCLUDE_DIRS} ${Qt5Svg_INCLUDE_DIRS})
list(FILTER widget_headers INCLUDE REGEX "/Qt(Widgets|Svg)$")
list(REMOVE_DUPLICATES widget_headers)
set(gl_headers ${Qt5OpenGL_INCLUDE_DIRS})
list(FILTER gl_headers INCLUDE REGEX "/QtOpenGL$")
list(REMOVE_DUPLICATES gl_headers)
add_test(NAME layers_includes COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/check_includes.py ${CMAKE_SOURCE_DIR}/src
         --graph ${graph} --widget-headers ${widget_headers} --gl-headers ${gl_headers})
add_test(NAME layers_planted_includes COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_check_includes.py)
add_test(NAME layers_planted_calls COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_planted_calls.py)
# The sanitizers add symbols of their own.
if(TARGET RyJointTools AND NOT RY_SANITIZE)
  add_test(NAME layers_exports COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_exports.py
           $<TARGET_FILE:RyJointTools> getPluginDefinition getSDKVersion)
  add_test(NAME layers_foreign_exports COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_exports.py
           $<TARGET_FILE:ryforeignpictures> ryPngFromPicture ryPngFromTexels)
  # Each library more is time that every foreign file takes longer to open.
  add_test(NAME layers_foreign_libraries COMMAND ${RY_PYTHON} -B ${CMAKE_CURRENT_LIST_DIR}/test_libraries.py
           $<TARGET_FILE:ryforeign> libQt5Core libassimp libdeflate libstdc++ libm libgcc_s libc)
endif()
