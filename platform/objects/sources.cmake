target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/object.cc
  ${CMAKE_CURRENT_LIST_DIR}/pointer_set.cc)
