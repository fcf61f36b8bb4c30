pkg_check_modules(PIXMAN REQUIRED IMPORTED_TARGET pixman-1)
target_link_libraries(xw PUBLIC PkgConfig::PIXMAN)
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/region.cc
  ${CMAKE_CURRENT_LIST_DIR}/surface.cc)
