ry_test(mesh LIBS rycore_mesh ry_test_core)
