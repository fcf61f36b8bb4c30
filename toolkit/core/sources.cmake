target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/alive.cc
  ${CMAKE_CURRENT_LIST_DIR}/post.cc
  ${CMAKE_CURRENT_LIST_DIR}/timers.cc
  ${CMAKE_CURRENT_LIST_DIR}/trace.cc)
