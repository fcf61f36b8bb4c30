quorvik_bench(draw ${CMAKE_CURRENT_LIST_DIR}/draw.cc ${CMAKE_CURRENT_LIST_DIR}/draw_floors.cc
  LIBS xw benchmark::benchmark)
# The floors are compiled as hard as the compiler can.
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/draw_floors.cc PROPERTIES COMPILE_OPTIONS -O3)
