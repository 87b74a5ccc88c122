ry_test(parametric LIBS rycore_io ry_test_core)
