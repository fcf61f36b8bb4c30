target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/bounds.cc
  ${CMAKE_CURRENT_LIST_DIR}/compose.cc
  ${CMAKE_CURRENT_LIST_DIR}/cursors.cc
  ${CMAKE_CURRENT_LIST_DIR}/drops.cc
  ${CMAKE_CURRENT_LIST_DIR}/events.cc
  ${CMAKE_CURRENT_LIST_DIR}/grab.cc
  ${CMAKE_CURRENT_LIST_DIR}/hints.cc
  ${CMAKE_CURRENT_LIST_DIR}/keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/manager.cc
  ${CMAKE_CURRENT_LIST_DIR}/mapping.cc
  ${CMAKE_CURRENT_LIST_DIR}/pixels.cc
  ${CMAKE_CURRENT_LIST_DIR}/pointer.cc
  ${CMAKE_CURRENT_LIST_DIR}/screens.cc
  ${CMAKE_CURRENT_LIST_DIR}/selections.cc
  ${CMAKE_CURRENT_LIST_DIR}/shared_memory.cc
  ${CMAKE_CURRENT_LIST_DIR}/startup.cc
  ${CMAKE_CURRENT_LIST_DIR}/sync.cc
  ${CMAKE_CURRENT_LIST_DIR}/devices.cc
  ${CMAKE_CURRENT_LIST_DIR}/text_requests.cc
  ${CMAKE_CURRENT_LIST_DIR}/watches.cc
  ${CMAKE_CURRENT_LIST_DIR}/windows.cc
  ${CMAKE_CURRENT_LIST_DIR}/x.cc)

# xkbcommon is loaded with the first key (compose.cc).
quorvik_archives(xw_x11_archives xcb-cursor xcb-image xcb-render-util xcb-render xcb-util xcb-shm
  xcb-randr xcb-xkb xcb-xinput xcb-xfixes xcb-icccm xcb-sync xcb Xau Xdmcp)
target_link_libraries(xw PUBLIC ${xw_x11_archives} ${CMAKE_DL_LIBS})
