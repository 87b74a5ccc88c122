ry_test(math LIBS rycore_math ry_test_core)
