if(TARGET ry_jointtools)
  ry_test(tool OFFSCREEN LIBS ry_jointtools rycore)
endif()
