quorvik_bench(print_path print_path.cc LIBS nc)
target_compile_definitions(bench_print_path PRIVATE PRINTSERVERD="$<TARGET_FILE:printserverd>")
add_dependencies(bench_print_path printserverd)
