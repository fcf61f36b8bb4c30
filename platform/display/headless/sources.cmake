target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/headless.cc
  ${CMAKE_CURRENT_LIST_DIR}/input.cc
  ${CMAKE_CURRENT_LIST_DIR}/selections.cc
  ${CMAKE_CURRENT_LIST_DIR}/snapshot.cc)
