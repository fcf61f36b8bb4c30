# The first frame: the example, and the least that any program could do for the same picture.
find_package(PkgConfig REQUIRED)
pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
quorvik_bench(first_frame first_frame.cc)
quorvik_bench(first_frame_hello first_frame_hello.c LIBS xw)
quorvik_bench(console_window console_window.cc LIBS console)
quorvik_bench(gallery first_frame.cc)
quorvik_bench(gallery_window gallery_window.c LIBS xw)
quorvik_bench(lists_frame first_frame.cc)
quorvik_bench(lists_window lists_window.c LIBS xw)
# The floor twice: with the system's shared libraries, as such a program is commonly built, and with
# the archives that the platform itself is linked with, so that the way of linking is no advantage.
quorvik_archives(floor_archives freetype png16 z brotlidec brotlicommon xcb-shm xcb Xau Xdmcp)
foreach(floor first_frame_floor first_frame_floor_static)
  add_executable(bench_${floor} first_frame_floor.cc)
  set_target_properties(bench_${floor} PROPERTIES OUTPUT_NAME ${floor}
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
  target_include_directories(bench_${floor} SYSTEM PRIVATE ${FREETYPE_INCLUDE_DIRS})
  add_dependencies(bench_first_frame bench_${floor})
  add_dependencies(bench_gallery bench_${floor})
  add_dependencies(bench_lists_frame bench_${floor})
endforeach()
target_link_libraries(bench_first_frame_floor PRIVATE quorvik_options PkgConfig::FREETYPE xcb xcb-shm)
target_link_libraries(bench_first_frame_floor_static PRIVATE quorvik_options ${floor_archives} m)
foreach(bench first_frame gallery lists_frame)
  target_compile_definitions(bench_${bench} PRIVATE NAME="${bench}"
    FLOOR="$<TARGET_FILE:bench_first_frame_floor>"
    FLOOR_STATIC="$<TARGET_FILE:bench_first_frame_floor_static>")
endforeach()
target_compile_definitions(bench_first_frame PRIVATE
  PROGRAM="$<TARGET_FILE:bench_first_frame_hello>" WIDTH="320" HEIGHT="184" ROWS="0"
  TIME_RATIO="time_ratio" CONSOLE="$<TARGET_FILE:bench_console_window>")
# The floors' windows are as large as those of the programs with their menu bars.
target_compile_definitions(bench_gallery PRIVATE
  PROGRAM="$<TARGET_FILE:bench_gallery_window>" WIDTH="800" HEIGHT="624" ROWS="0"
  TIME_RATIO="time_ratio")
target_compile_definitions(bench_lists_frame PRIVATE
  PROGRAM="$<TARGET_FILE:bench_lists_window>" WIDTH="320" HEIGHT="208" ROWS="100000"
  TIME_RATIO="frame_ratio")
add_dependencies(bench_first_frame bench_first_frame_hello bench_console_window)
add_dependencies(bench_gallery bench_gallery_window)
add_dependencies(bench_lists_frame bench_lists_window)

# Damage to the screen, beside one bare put of the same rectangle.
quorvik_bench(present present.cc LIBS xw)
