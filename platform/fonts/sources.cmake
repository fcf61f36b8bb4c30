pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
pkg_check_modules(FONTCONFIG REQUIRED fontconfig)
# The font finder is opened at run time when it is needed, so only its header counts here.
target_link_libraries(xw PUBLIC PkgConfig::FREETYPE ${CMAKE_DL_LIBS})
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/answers.cc
  ${CMAKE_CURRENT_LIST_DIR}/face.cc
  ${CMAKE_CURRENT_LIST_DIR}/finder.cc
  ${CMAKE_CURRENT_LIST_DIR}/folder.cc
  ${CMAKE_CURRENT_LIST_DIR}/glyphs.cc
  ${CMAKE_CURRENT_LIST_DIR}/installed.cc
  ${CMAKE_CURRENT_LIST_DIR}/mac_roman.cc
  ${CMAKE_CURRENT_LIST_DIR}/match.cc)
