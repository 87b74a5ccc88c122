ry_test(skin LIBS rycore_skin ry_test_core)
