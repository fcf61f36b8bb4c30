target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/roles.cc
  ${CMAKE_CURRENT_LIST_DIR}/theme.cc)
