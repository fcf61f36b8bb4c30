pkg_check_modules(FREETYPE REQUIRED freetype2)
pkg_check_modules(FONTCONFIG REQUIRED fontconfig)
# The font finder is opened at run time when it is needed, so only its header counts here.
quorvik_archives(xw_font_archives freetype png16 z brotlidec brotlicommon)
target_include_directories(xw SYSTEM PUBLIC ${FREETYPE_INCLUDE_DIRS})
target_link_libraries(xw PUBLIC ${xw_font_archives} ${CMAKE_DL_LIBS} m)
target_sources(xw PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/cache_file.cc
  ${CMAKE_CURRENT_LIST_DIR}/font_cache.cc
  ${CMAKE_CURRENT_LIST_DIR}/face.cc
  ${CMAKE_CURRENT_LIST_DIR}/finder.cc
  ${CMAKE_CURRENT_LIST_DIR}/folder.cc
  ${CMAKE_CURRENT_LIST_DIR}/font_file.cc
  ${CMAKE_CURRENT_LIST_DIR}/glyph_cache.cc
  ${CMAKE_CURRENT_LIST_DIR}/glyphs.cc
  ${CMAKE_CURRENT_LIST_DIR}/installed.cc
  ${CMAKE_CURRENT_LIST_DIR}/layout.cc
  ${CMAKE_CURRENT_LIST_DIR}/match.cc
  ${CMAKE_CURRENT_LIST_DIR}/state.cc)
