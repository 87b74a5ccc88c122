ry_test(io_document LIBS rycore_io ry_test_core)
