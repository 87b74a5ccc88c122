ry_test(host GL LIBS ry_ryhost ry_pointer_driver rycore)
add_dependencies(tst_host RyJointTools)
