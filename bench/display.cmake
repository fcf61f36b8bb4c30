# The first frame: the example, and the least that any program could do for the same picture.
find_package(PkgConfig REQUIRED)
pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
quorvik_bench(first_frame first_frame.cc)
quorvik_bench(first_frame_hello first_frame_hello.c LIBS xw)
add_executable(bench_first_frame_floor first_frame_floor.cc)
set_target_properties(bench_first_frame_floor PROPERTIES OUTPUT_NAME first_frame_floor
  RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
target_link_libraries(bench_first_frame_floor PRIVATE quorvik_options PkgConfig::FREETYPE xcb xcb-shm)
target_compile_definitions(bench_first_frame PRIVATE
  HELLO="$<TARGET_FILE:bench_first_frame_hello>" FLOOR="$<TARGET_FILE:bench_first_frame_floor>")
add_dependencies(bench_first_frame bench_first_frame_hello bench_first_frame_floor)

# Damage to the screen, beside one bare put of the same rectangle.
quorvik_bench(present present.cc LIBS xw)
