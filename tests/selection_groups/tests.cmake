# Selection maps of figures: the builder and its plain counterpart.
if(TARGET ry_jointtools)
  ry_test(selection_groups OFFSCREEN LIBS ry_jointtools rycore)
endif()
