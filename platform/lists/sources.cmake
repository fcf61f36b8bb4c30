target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/lists.cc
  ${CMAKE_CURRENT_LIST_DIR}/pointer.cc
  ${CMAKE_CURRENT_LIST_DIR}/rows.cc)
