ry_test(base LIBS rycore_base ry_test_core)
