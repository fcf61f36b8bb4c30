target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/beep.cc
  ${CMAKE_CURRENT_LIST_DIR}/clipboard.cc
  ${CMAKE_CURRENT_LIST_DIR}/cursor_art.cc
  ${CMAKE_CURRENT_LIST_DIR}/cursors.cc
  ${CMAKE_CURRENT_LIST_DIR}/described_tree.cc
  ${CMAKE_CURRENT_LIST_DIR}/desktop.cc
  ${CMAKE_CURRENT_LIST_DIR}/documents.cc
  ${CMAKE_CURRENT_LIST_DIR}/install.cc
  ${CMAKE_CURRENT_LIST_DIR}/keyboard.cc
  ${CMAKE_CURRENT_LIST_DIR}/loop.cc
  ${CMAKE_CURRENT_LIST_DIR}/menu_bar.cc
  ${CMAKE_CURRENT_LIST_DIR}/mouse.cc
  ${CMAKE_CURRENT_LIST_DIR}/results.cc
  ${CMAKE_CURRENT_LIST_DIR}/session.cc)
