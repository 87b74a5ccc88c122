ry_test(script LIBS rycore_script ry_test_core)
