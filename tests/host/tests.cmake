if(TARGET ry_ryhost)
  ry_test(host GL LIBS ry_ryhost rycore)
endif()
