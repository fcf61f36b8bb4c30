target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/receive.cc
  ${CMAKE_CURRENT_LIST_DIR}/standard.cc
  ${CMAKE_CURRENT_LIST_DIR}/start.cc)
