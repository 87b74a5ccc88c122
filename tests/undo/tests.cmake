ry_test(undo LIBS rycore_undo ry_test_core)
