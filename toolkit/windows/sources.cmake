target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/attributes.cc
  ${CMAKE_CURRENT_LIST_DIR}/boxes.cc
  ${CMAKE_CURRENT_LIST_DIR}/control_bounds.cc
  ${CMAKE_CURRENT_LIST_DIR}/described.cc
  ${CMAKE_CURRENT_LIST_DIR}/destroy.cc
  ${CMAKE_CURRENT_LIST_DIR}/geometry.cc
  ${CMAKE_CURRENT_LIST_DIR}/item_texts.cc
  ${CMAKE_CURRENT_LIST_DIR}/menu_items.cc
  ${CMAKE_CURRENT_LIST_DIR}/menu_keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/menu_tree.cc
  ${CMAKE_CURRENT_LIST_DIR}/menus.cc
  ${CMAKE_CURRENT_LIST_DIR}/panes.cc
  ${CMAKE_CURRENT_LIST_DIR}/program_icon.cc
  ${CMAKE_CURRENT_LIST_DIR}/tips.cc
  ${CMAKE_CURRENT_LIST_DIR}/tree.cc)
