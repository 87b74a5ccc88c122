if(TARGET ry_jointtools)
  ry_test(tool_gl OFFSCREEN LIBS ry_jointtools rycore ${CMAKE_DL_LIBS}
          SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.cpp ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.h)
endif()
