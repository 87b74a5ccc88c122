# What is recorded of every kind of value, on whole figures.
ry_test(undo_items LIBS rycore_io ry_test_core)
