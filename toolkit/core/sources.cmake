target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/alive.cc
  ${CMAKE_CURRENT_LIST_DIR}/grab.cc
  ${CMAKE_CURRENT_LIST_DIR}/memory.cc
  ${CMAKE_CURRENT_LIST_DIR}/post.cc
  ${CMAKE_CURRENT_LIST_DIR}/record.cc
  ${CMAKE_CURRENT_LIST_DIR}/state.cc
  ${CMAKE_CURRENT_LIST_DIR}/strings.cc
  ${CMAKE_CURRENT_LIST_DIR}/timers.cc
  ${CMAKE_CURRENT_LIST_DIR}/trace.cc)
