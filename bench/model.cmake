quorvik_bench(folder_rows folder_rows.cc LIBS quorvik_model)
