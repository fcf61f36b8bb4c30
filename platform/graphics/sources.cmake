pkg_check_modules(PIXMAN REQUIRED pixman-1)
pkg_check_modules(PNG REQUIRED libpng)
quorvik_archives(xw_pixman_archives pixman-1)
quorvik_archives(xw_png_archives png16 z)
target_include_directories(xw SYSTEM PRIVATE ${PNG_INCLUDE_DIRS})
target_link_libraries(xw PUBLIC ${xw_pixman_archives} ${xw_png_archives} m Threads::Threads)
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/context.cc
  ${CMAKE_CURRENT_LIST_DIR}/fills.cc
  ${CMAKE_CURRENT_LIST_DIR}/font_library.cc
  ${CMAKE_CURRENT_LIST_DIR}/lines.cc
  ${CMAKE_CURRENT_LIST_DIR}/outline_masks.cc
  ${CMAKE_CURRENT_LIST_DIR}/outline_shape.cc
  ${CMAKE_CURRENT_LIST_DIR}/paths.cc
  ${CMAKE_CURRENT_LIST_DIR}/pictures.cc
  ${CMAKE_CURRENT_LIST_DIR}/png.cc
  ${CMAKE_CURRENT_LIST_DIR}/region.cc
  ${CMAKE_CURRENT_LIST_DIR}/shapes.cc
  ${CMAKE_CURRENT_LIST_DIR}/surface.cc)

target_include_directories(xw SYSTEM PUBLIC ${PIXMAN_INCLUDE_DIRS})
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|i.86|AMD64)$")
  target_sources(xw PRIVATE ${CMAKE_CURRENT_LIST_DIR}/swap_x86.cc)
else()
  target_sources(xw PRIVATE ${CMAKE_CURRENT_LIST_DIR}/swap_any.cc)
endif()
