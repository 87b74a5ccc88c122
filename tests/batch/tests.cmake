# Runs the program itself, as a person at a shell would, without a display.
ry_test(batch LIBS rycore_io ry_test_core)
add_dependencies(tst_batch ryhost RyJointTools)
