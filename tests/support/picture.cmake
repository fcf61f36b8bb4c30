find_package(PNG REQUIRED)
add_library(test_picture STATIC ${CMAKE_CURRENT_LIST_DIR}/picture.cc)
target_link_libraries(test_picture PUBLIC quorvik_options GTest::gtest PNG::PNG)
