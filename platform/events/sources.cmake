target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/journal.cc
  ${CMAKE_CURRENT_LIST_DIR}/journal_line.cc
  ${CMAKE_CURRENT_LIST_DIR}/keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/queue.cc
  ${CMAKE_CURRENT_LIST_DIR}/receive.cc
  ${CMAKE_CURRENT_LIST_DIR}/standard.cc
  ${CMAKE_CURRENT_LIST_DIR}/targets.cc
  ${CMAKE_CURRENT_LIST_DIR}/timers.cc
  ${CMAKE_CURRENT_LIST_DIR}/translate.cc)
