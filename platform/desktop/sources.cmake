target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/application.cc
  ${CMAKE_CURRENT_LIST_DIR}/bus.cc
  ${CMAKE_CURRENT_LIST_DIR}/documents.cc
  ${CMAKE_CURRENT_LIST_DIR}/signals.cc
  ${CMAKE_CURRENT_LIST_DIR}/session_end.cc
  ${CMAKE_CURRENT_LIST_DIR}/startup.cc
  ${CMAKE_CURRENT_LIST_DIR}/uris.cc)
