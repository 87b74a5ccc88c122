ry_test(io LIBS rycore_io ry_evaluator ry_test_core)
