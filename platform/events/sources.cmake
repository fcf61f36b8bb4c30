target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/clock.cc
  ${CMAKE_CURRENT_LIST_DIR}/queue.cc
  ${CMAKE_CURRENT_LIST_DIR}/raw_event.cc
  ${CMAKE_CURRENT_LIST_DIR}/sources.cc
  ${CMAKE_CURRENT_LIST_DIR}/targets.cc
  ${CMAKE_CURRENT_LIST_DIR}/trackers.cc
  ${CMAKE_CURRENT_LIST_DIR}/timers.cc)
