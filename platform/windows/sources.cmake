target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/activation.cc
  ${CMAKE_CURRENT_LIST_DIR}/bounds.cc
  ${CMAKE_CURRENT_LIST_DIR}/cursors.cc
  ${CMAKE_CURRENT_LIST_DIR}/drags.cc
  ${CMAKE_CURRENT_LIST_DIR}/painting.cc
  ${CMAKE_CURRENT_LIST_DIR}/pop_ups.cc
  ${CMAKE_CURRENT_LIST_DIR}/tip.cc
  ${CMAKE_CURRENT_LIST_DIR}/windows.cc)
