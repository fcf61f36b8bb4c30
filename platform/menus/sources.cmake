target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/bar.cc
  ${CMAKE_CURRENT_LIST_DIR}/bar_keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/describe.cc
  ${CMAKE_CURRENT_LIST_DIR}/layout.cc
  ${CMAKE_CURRENT_LIST_DIR}/levels.cc
  ${CMAKE_CURRENT_LIST_DIR}/menus.cc
  ${CMAKE_CURRENT_LIST_DIR}/open_menu_keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/open_menus.cc)
