# The host library is cut into layers, one folder each, from the ground up. A layer may use the layers before it in
# RY_LAYERS and nothing after it. Two things hold that: every layer is linked on its own, with no undefined symbols
# allowed, against the layers below it only; and check_includes.py refuses an include that points up.
set(RY_LAYERS math undo base mesh scene skin parametric figure io script viewport ui app)

# ry_layer(NAME [LIBS library...]): all sources of src/rycore/NAME become the objects ry_NAME and the library
# rycore_NAME, linked against the layers below.
function(ry_layer name)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/rycore/${name}/*.cpp
       ${CMAKE_SOURCE_DIR}/src/rycore/${name}/*.h ${CMAKE_SOURCE_DIR}/src/rycore/${name}/*.qrc)
  if(NOT sources)
    return()
  endif()
  add_library(ry_${name} OBJECT ${sources})
  target_include_directories(ry_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(ry_${name} PRIVATE ry_compile_options PUBLIC ${ARG_LIBS})
  add_library(rycore_${name} SHARED $<TARGET_OBJECTS:ry_${name}>)
  set_target_properties(rycore_${name} PROPERTIES AUTOMOC OFF AUTORCC OFF LINKER_LANGUAGE CXX)
  target_include_directories(rycore_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  if(NOT RY_SANITIZE)
    target_link_options(rycore_${name} PRIVATE -Wl,--no-undefined)
  endif()
  target_link_libraries(rycore_${name} PUBLIC ${ARG_LIBS})
  foreach(below IN LISTS RY_LAYERS)
    if(below STREQUAL name)
      break()
    endif()
    if(TARGET rycore_${below})
      target_link_libraries(ry_${name} PUBLIC $<TARGET_PROPERTY:ry_${below},INTERFACE_LINK_LIBRARIES>)
      target_link_libraries(rycore_${name} PUBLIC rycore_${below})
    endif()
  endforeach()
  set_property(GLOBAL APPEND PROPERTY RY_LAYER_OBJECTS ry_${name})
endfunction()
