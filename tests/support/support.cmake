# The main of every test program, and what tests of the toolkit share.
add_library(test_main STATIC ${CMAKE_CURRENT_LIST_DIR}/main.cc ${CMAKE_CURRENT_LIST_DIR}/seed.cc
  ${CMAKE_CURRENT_LIST_DIR}/time_limit.cc)
target_link_libraries(test_main PUBLIC quorvik_options GTest::gtest)

add_library(support STATIC ${CMAKE_CURRENT_LIST_DIR}/random_input.cc ${CMAKE_CURRENT_LIST_DIR}/trace.cc)
target_link_libraries(support PUBLIC xw test_main)
