target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clip.cc
  ${CMAKE_CURRENT_LIST_DIR}/colors.cc
  ${CMAKE_CURRENT_LIST_DIR}/background.cc
  ${CMAKE_CURRENT_LIST_DIR}/selection.cc)
