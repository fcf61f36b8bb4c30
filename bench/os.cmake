quorvik_bench(listdir ${CMAKE_CURRENT_LIST_DIR}/listdir.cc LIBS os)
