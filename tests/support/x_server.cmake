# A server of the test's own and a user at it; for every room that looks at real windows.
add_library(x_server STATIC ${CMAKE_CURRENT_LIST_DIR}/x_server.cc)
find_library(xcb_xtest_archive NAMES libxcb-xtest.a xcb-xtest REQUIRED)
target_compile_definitions(x_server PRIVATE XW_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
target_link_libraries(x_server PUBLIC ${xcb_xtest_archive} support xw PRIVATE quorvik_options)
