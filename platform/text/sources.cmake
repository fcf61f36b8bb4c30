target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/characters.cc
  ${CMAKE_CURRENT_LIST_DIR}/letters.cc
  ${CMAKE_CURRENT_LIST_DIR}/mac_roman.cc
  ${CMAKE_CURRENT_LIST_DIR}/tables.cc
  ${CMAKE_CURRENT_LIST_DIR}/utf8.cc)
