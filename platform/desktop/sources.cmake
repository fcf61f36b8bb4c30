target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/application.cc
  ${CMAKE_CURRENT_LIST_DIR}/requests.cc
  ${CMAKE_CURRENT_LIST_DIR}/uris.cc)
