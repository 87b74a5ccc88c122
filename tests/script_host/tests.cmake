# Scripts with what the whole host gives them: actions, forms, the script library.
ry_test(script_host OFFSCREEN LIBS rycore)
