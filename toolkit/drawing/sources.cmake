file(GLOB drawing_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cc)
target_sources(xw PRIVATE ${drawing_sources})
