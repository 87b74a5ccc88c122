# Runs the program itself, as a person at a shell would, without a display.
ry_test(batch LIBS rycore_io ry_test_core)
add_dependencies(tst_batch ryhost RyJointTools)
# The program draws pictures: see the other programs with drivers in them.
set_property(TEST tst_batch APPEND PROPERTY ENVIRONMENT ASAN_OPTIONS=detect_leaks=0)
