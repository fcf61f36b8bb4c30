target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/compose.cc
  ${CMAKE_CURRENT_LIST_DIR}/cursors.cc
  ${CMAKE_CURRENT_LIST_DIR}/drops.cc
  ${CMAKE_CURRENT_LIST_DIR}/events.cc
  ${CMAKE_CURRENT_LIST_DIR}/hints.cc
  ${CMAKE_CURRENT_LIST_DIR}/keys.cc
  ${CMAKE_CURRENT_LIST_DIR}/pixels.cc
  ${CMAKE_CURRENT_LIST_DIR}/pointer.cc
  ${CMAKE_CURRENT_LIST_DIR}/screens.cc
  ${CMAKE_CURRENT_LIST_DIR}/tablet.cc
  ${CMAKE_CURRENT_LIST_DIR}/windows.cc
  ${CMAKE_CURRENT_LIST_DIR}/x.cc)

# The connection's libraries are small and their relocation at every start is not: archives where
# there are any. xkbcommon is loaded with the first key (compose.cc).
set(xw_x11_libraries xcb-cursor xcb-image xcb-render-util xcb-render xcb-util xcb-shm xcb-randr xcb-xkb
  xcb-xinput xcb-xfixes xcb-icccm xcb Xau Xdmcp)
foreach(library ${xw_x11_libraries})
  find_library(xw_lib_${library} NAMES lib${library}.a ${library} REQUIRED)
  list(APPEND xw_x11_archives ${xw_lib_${library}})
endforeach()
target_link_libraries(xw PUBLIC ${xw_x11_archives} ${CMAKE_DL_LIBS})
