target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/buttons.cc
  ${CMAKE_CURRENT_LIST_DIR}/marks.cc
  ${CMAKE_CURRENT_LIST_DIR}/roles.cc
  ${CMAKE_CURRENT_LIST_DIR}/text.cc
  ${CMAKE_CURRENT_LIST_DIR}/theme.cc
  ${CMAKE_CURRENT_LIST_DIR}/thumbs.cc)
