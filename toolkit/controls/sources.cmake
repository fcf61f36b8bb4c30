target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/alert.cc
  ${CMAKE_CURRENT_LIST_DIR}/alert_art.cc
  ${CMAKE_CURRENT_LIST_DIR}/button_draw.cc
  ${CMAKE_CURRENT_LIST_DIR}/buttons.cc
  ${CMAKE_CURRENT_LIST_DIR}/combos.cc
  ${CMAKE_CURRENT_LIST_DIR}/dialog_items.cc
  ${CMAKE_CURRENT_LIST_DIR}/dropped.cc
  ${CMAKE_CURRENT_LIST_DIR}/edits.cc
  ${CMAKE_CURRENT_LIST_DIR}/focus.cc
  ${CMAKE_CURRENT_LIST_DIR}/framework.cc
  ${CMAKE_CURRENT_LIST_DIR}/lists.cc
  ${CMAKE_CURRENT_LIST_DIR}/sliders.cc
  ${CMAKE_CURRENT_LIST_DIR}/toolbar.cc
  ${CMAKE_CURRENT_LIST_DIR}/values.cc)
