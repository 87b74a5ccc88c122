if(TARGET ry_jointtools)
  ry_test(restore OFFSCREEN LIBS ry_jointtools rycore)
endif()
