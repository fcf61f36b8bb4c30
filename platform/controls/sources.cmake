target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/bands.cc
  ${CMAKE_CURRENT_LIST_DIR}/bevel_button.cc
  ${CMAKE_CURRENT_LIST_DIR}/buttons.cc
  ${CMAKE_CURRENT_LIST_DIR}/check_box.cc
  ${CMAKE_CURRENT_LIST_DIR}/controls.cc
  ${CMAKE_CURRENT_LIST_DIR}/drawing.cc
  ${CMAKE_CURRENT_LIST_DIR}/focus.cc
  ${CMAKE_CURRENT_LIST_DIR}/keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/panes.cc
  ${CMAKE_CURRENT_LIST_DIR}/pop_up_button.cc
  ${CMAKE_CURRENT_LIST_DIR}/push_button.cc
  ${CMAKE_CURRENT_LIST_DIR}/scroll_bar.cc
  ${CMAKE_CURRENT_LIST_DIR}/slider.cc
  ${CMAKE_CURRENT_LIST_DIR}/static_text.cc
  ${CMAKE_CURRENT_LIST_DIR}/thumb.cc
  ${CMAKE_CURRENT_LIST_DIR}/tracking.cc
  ${CMAKE_CURRENT_LIST_DIR}/user_pane.cc)
