ry_test(parametric LIBS rycore_parametric ry_test_core)
