ry_test(ui GL LIBS rycore)
