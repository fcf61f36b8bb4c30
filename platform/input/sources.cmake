target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/record.cc
  ${CMAKE_CURRENT_LIST_DIR}/record_line.cc
  ${CMAKE_CURRENT_LIST_DIR}/results.cc
  ${CMAKE_CURRENT_LIST_DIR}/translate.cc)
