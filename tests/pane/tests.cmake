# The settings pane of the tool and what it is made of, worked with keys and mouse. Windows take the keyboard here.
if(TARGET ry_jointtools)
  ry_test(pane GL LIBS ry_jointtools rycore
          SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.cpp ${CMAKE_CURRENT_SOURCE_DIR}/tool/RyToolScene.h)
endif()
