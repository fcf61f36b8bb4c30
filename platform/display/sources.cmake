target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/alert_sound.cc
  ${CMAKE_CURRENT_LIST_DIR}/cursor.cc
  ${CMAKE_CURRENT_LIST_DIR}/displays.cc
  ${CMAKE_CURRENT_LIST_DIR}/pop_up.cc
  ${CMAKE_CURRENT_LIST_DIR}/program_icon.cc
  ${CMAKE_CURRENT_LIST_DIR}/screens.cc
  ${CMAKE_CURRENT_LIST_DIR}/window.cc)
