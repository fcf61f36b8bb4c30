# How soon the console answers a key, whatever else it has to do.
quorvik_bench(response response.cc LIBS console nc)
find_library(xcb_xtest_archive NAMES libxcb-xtest.a xcb-xtest REQUIRED)
target_link_libraries(bench_response PRIVATE ${xcb_xtest_archive})
target_compile_definitions(bench_response PRIVATE PRINTSERVERD="$<TARGET_FILE:printserverd>"
  PREVIEW="$<TARGET_FILE:quorvik-preview>")
add_dependencies(bench_response printserverd quorvik-preview)
