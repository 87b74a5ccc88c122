# The host library is cut into layers, one folder of src/rycore each, and the layers form a graph: a layer may use the
# layers it needs, those that these need in turn, and nothing else. A large folder may be cut into rooms in the same
# way. Two things hold that: every layer is linked on its own, with no undefined symbols allowed, against what it needs
# only; and tests/layers/check_includes.py reads the graph and refuses an include that goes against it.

# ry_layer(NAME [NEEDS layer...] [LIBS library...] [WIDGETS] [GL]): all sources of src/rycore/NAME become the objects
# ry_NAME and the library rycore_NAME, linked against the layers that it needs.
#   WIDGETS  the layer may use widgets
#   GL       the layer may call OpenGL
function(ry_layer name)
  cmake_parse_arguments(ARG "WIDGETS;GL" "" "NEEDS;LIBS" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "Layer ${name}: what is ${ARG_UNPARSED_ARGUMENTS}?")
  endif()
  if(TARGET ry_${name})
    message(FATAL_ERROR "Layer ${name} is declared twice")
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/rycore/${name}/*.cpp
       ${CMAKE_SOURCE_DIR}/src/rycore/${name}/*.h ${CMAKE_SOURCE_DIR}/src/rycore/${name}/*.qrc)
  if(NOT sources)
    message(FATAL_ERROR "Layer ${name} has no sources in src/rycore/${name}")
  endif()
  foreach(below IN LISTS ARG_NEEDS)
    if(NOT TARGET rycore_${below})
      message(FATAL_ERROR "Layer ${name} needs ${below}, which is no layer declared before it")
    endif()
  endforeach()
  add_library(ry_${name} OBJECT ${sources})
  target_include_directories(ry_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  add_library(rycore_${name} SHARED $<TARGET_OBJECTS:ry_${name}>)
  set_target_properties(rycore_${name} PROPERTIES AUTOMOC OFF AUTORCC OFF LINKER_LANGUAGE CXX)
  target_include_directories(rycore_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  if(NOT RY_SANITIZE)
    target_link_options(rycore_${name} PRIVATE -Wl,--no-undefined)
  endif()
  target_link_libraries(rycore_${name} PUBLIC ${ARG_LIBS})
  # The objects of other layers are linked by the libraries alone, so that what headers need is passed on by hand.
  set(libraries ${ARG_LIBS})
  foreach(below IN LISTS ARG_NEEDS)
    get_property(passed_on GLOBAL PROPERTY RY_LIBRARIES_OF_${below})
    list(APPEND libraries ${passed_on})
    target_link_libraries(rycore_${name} PUBLIC rycore_${below})
  endforeach()
  list(REMOVE_DUPLICATES libraries)
  set_property(GLOBAL PROPERTY RY_LIBRARIES_OF_${name} ${libraries})
  target_link_libraries(ry_${name} PRIVATE ry_compile_options PUBLIC ${libraries})
  set_property(GLOBAL APPEND PROPERTY RY_LAYER_OBJECTS ry_${name})

  set(may "")
  if(ARG_WIDGETS)
    list(APPEND may widgets)
  endif()
  if(ARG_GL)
    list(APPEND may gl)
  endif()
  list(JOIN ARG_NEEDS "," needs)
  list(JOIN may "," may)
  set_property(GLOBAL APPEND PROPERTY RY_GRAPH "layer ${name} needs=${needs} may=${may}")
endfunction()

# ry_room(FOLDER [NEEDS room...] [ON_TOP]): a folder below src that may use the rooms it needs and those that these need
# in turn, of all rooms of the folder above, and no file that stands loose in that folder: such a file puts the rooms
# together and is as free as its layer.
#   ON_TOP  the room knows the loose files, and they do not know it
function(ry_room folder)
  cmake_parse_arguments(ARG "ON_TOP" "" "NEEDS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
  if(NOT sources)
    message(FATAL_ERROR "Room ${folder} has no sources")
  endif()
  get_property(known GLOBAL PROPERTY RY_ROOMS)
  cmake_path(GET folder PARENT_PATH house)
  foreach(below IN LISTS ARG_NEEDS)
    if(NOT "${house}/${below}" IN_LIST known)
      message(FATAL_ERROR "Room ${folder} needs ${below}, which is no room declared before it")
    endif()
  endforeach()
  set_property(GLOBAL APPEND PROPERTY RY_ROOMS ${folder})
  list(JOIN ARG_NEEDS "," needs)
  set(place "")
  if(ARG_ON_TOP)
    set(place " on_top")
  endif()
  set_property(GLOBAL APPEND PROPERTY RY_GRAPH "room ${folder} needs=${needs}${place}")
endfunction()

# Writes the graph as the include check reads it: one layer or room a line.
function(ry_write_graph file)
  get_property(graph GLOBAL PROPERTY RY_GRAPH)
  list(JOIN graph "\n" text)
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}\n" @ONLY)
endfunction()
