target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/inject.cc
  ${CMAKE_CURRENT_LIST_DIR}/inspect.cc
  ${CMAKE_CURRENT_LIST_DIR}/json.cc
  ${CMAKE_CURRENT_LIST_DIR}/nodes.cc
  ${CMAKE_CURRENT_LIST_DIR}/requests.cc
  ${CMAKE_CURRENT_LIST_DIR}/socket.cc)
