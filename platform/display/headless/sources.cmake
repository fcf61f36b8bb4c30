pkg_check_modules(PNG REQUIRED libpng)
quorvik_archives(xw_png_archives png16 z)
target_include_directories(xw SYSTEM PRIVATE ${PNG_INCLUDE_DIRS})
target_link_libraries(xw PUBLIC ${xw_png_archives} m)
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/headless.cc
  ${CMAKE_CURRENT_LIST_DIR}/input.cc
  ${CMAKE_CURRENT_LIST_DIR}/selections.cc
  ${CMAKE_CURRENT_LIST_DIR}/snapshot.cc)
