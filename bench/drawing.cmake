quorvik_bench(draw ${CMAKE_CURRENT_LIST_DIR}/draw.cc ${CMAKE_CURRENT_LIST_DIR}/draw_floors.cc
  LIBS xw benchmark::benchmark)
quorvik_bench(text ${CMAKE_CURRENT_LIST_DIR}/text.cc ${CMAKE_CURRENT_LIST_DIR}/draw_floors.cc
  LIBS xw)
# The floors are compiled as hard as the compiler can.
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/draw_floors.cc PROPERTIES COMPILE_OPTIONS -O3)
