pkg_check_modules(PIXMAN REQUIRED IMPORTED_TARGET pixman-1)
target_link_libraries(xw PUBLIC PkgConfig::PIXMAN)
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/context.cc
  ${CMAKE_CURRENT_LIST_DIR}/fills.cc
  ${CMAKE_CURRENT_LIST_DIR}/lines.cc
  ${CMAKE_CURRENT_LIST_DIR}/pictures.cc
  ${CMAKE_CURRENT_LIST_DIR}/region.cc
  ${CMAKE_CURRENT_LIST_DIR}/shapes.cc
  ${CMAKE_CURRENT_LIST_DIR}/surface.cc)
