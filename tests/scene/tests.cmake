ry_test(scene LIBS rycore_scene ry_test_core)
