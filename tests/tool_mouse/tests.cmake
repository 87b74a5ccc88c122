if(TARGET ry_jointtools)
  ry_test(tool_mouse GL LIBS ry_jointtools rycore
          SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.cpp ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.h
                  ${CMAKE_CURRENT_SOURCE_DIR}/viewport/ViewportTestScene.cpp
                  ${CMAKE_CURRENT_SOURCE_DIR}/viewport/ViewportTestScene.h)
endif()
