ry_test(figure LIBS rycore_io ry_test_core)
