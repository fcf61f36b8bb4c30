quorvik_fuzz(events ${CMAKE_CURRENT_LIST_DIR}/events.cc LIBS xw)
quorvik_fuzz(inspect ${CMAKE_CURRENT_LIST_DIR}/inspect.cc LIBS xw)
target_compile_definitions(fuzz_inspect PRIVATE FONTS="/usr/share/fonts/truetype/dejavu")
