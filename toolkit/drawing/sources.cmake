target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/dashes.cc
  ${CMAKE_CURRENT_LIST_DIR}/fonts.cc
  ${CMAKE_CURRENT_LIST_DIR}/frames.cc
  ${CMAKE_CURRENT_LIST_DIR}/icon_bits.cc
  ${CMAKE_CURRENT_LIST_DIR}/icon_outlines.cc
  ${CMAKE_CURRENT_LIST_DIR}/icons.cc
  ${CMAKE_CURRENT_LIST_DIR}/images.cc
  ${CMAKE_CURRENT_LIST_DIR}/paths.cc
  ${CMAKE_CURRENT_LIST_DIR}/progress.cc
  ${CMAKE_CURRENT_LIST_DIR}/style.cc
  ${CMAKE_CURRENT_LIST_DIR}/shapes.cc
  ${CMAKE_CURRENT_LIST_DIR}/text.cc
  ${CMAKE_CURRENT_LIST_DIR}/text_box.cc
  ${CMAKE_CURRENT_LIST_DIR}/text_utf8.cc
  ${CMAKE_CURRENT_LIST_DIR}/utf8.cc)
