ry_test(automation GL LIBS rycore)
