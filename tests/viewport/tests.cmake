ry_test(viewport GL LIBS rycore)
