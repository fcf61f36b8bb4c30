target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/dispatch.cc
  ${CMAKE_CURRENT_LIST_DIR}/receive.cc
  ${CMAKE_CURRENT_LIST_DIR}/start.cc
  ${CMAKE_CURRENT_LIST_DIR}/tracking.cc)
