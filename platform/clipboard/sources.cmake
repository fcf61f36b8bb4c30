target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clipboard.cc)
