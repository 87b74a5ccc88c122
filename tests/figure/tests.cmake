ry_test(figure LIBS rycore_io ry_test_core)
# Files of other programs are read by a process of the program.
add_dependencies(tst_figure ryhost ryforeign)
