pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
target_link_libraries(xw PUBLIC PkgConfig::PNG)
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/headless.cc
  ${CMAKE_CURRENT_LIST_DIR}/input.cc
  ${CMAKE_CURRENT_LIST_DIR}/snapshot.cc)
