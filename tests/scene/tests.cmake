ry_test(scene LIBS rycore_scene Eigen3::Eigen ry_test_core)
