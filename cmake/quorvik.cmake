# Compile settings shared by every room, and the helpers that declare programs, tests and benches.

add_library(quorvik_options INTERFACE)
target_include_directories(quorvik_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(quorvik_options INTERFACE
  -Wall -Wextra -Wshadow $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror> -fno-strict-aliasing
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>)
target_compile_definitions(quorvik_options INTERFACE _GNU_SOURCE)
if(QUORVIK_SANITIZE)
  target_compile_options(quorvik_options INTERFACE
    -fsanitize=${QUORVIK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quorvik_options INTERFACE -fsanitize=${QUORVIK_SANITIZE})
else()
  # A shared C++ library costs every start two milliseconds.
  target_link_options(quorvik_options INTERFACE -static-libstdc++ -static-libgcc)
endif()
find_package(Threads REQUIRED)

# quorvik_library(NAME): one for programs elsewhere, too, which want its headers but not the warnings.
function(quorvik_library name)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE quorvik_options)
endfunction()

# quorvik_program(NAME SOURCES... [LIBS ...])
function(quorvik_program name)
  cmake_parse_arguments(P "" "" "LIBS" ${ARGN})
  add_executable(${name} ${P_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE quorvik_options ${P_LIBS})
endfunction()

# quorvik_test(NAME SOURCES... [LIBS ...] [LABELS ...] [ENVIRONMENT NAME=VALUE ...] [TIMEOUT
# seconds]): each TEST runs in a process of its own, so that a crash is that of one test.
function(quorvik_test name)
  cmake_parse_arguments(P "" "TIMEOUT" "LIBS;LABELS;ENVIRONMENT" ${ARGN})
  if(NOT P_TIMEOUT)
    set(P_TIMEOUT 60)
  endif()
  add_executable(${name} ${P_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE quorvik_options ${P_LIBS} test_main)
  # The test ends itself with a message shortly before it is ended.
  math(EXPR seconds "${P_TIMEOUT} - 3")
  gtest_discover_tests(${name} TEST_PREFIX "${name}:" DISCOVERY_TIMEOUT 60
    EXTRA_ARGS --seconds=${seconds} PROPERTIES TIMEOUT ${P_TIMEOUT})
  # A property that is a list would be taken apart on the way through the call above: it is set
  # where the tests are known by name.
  set(lists)
  foreach(property LABELS ENVIRONMENT)
    if(P_${property})
      string(APPEND lists " ${property} [==[${P_${property}}]==]")
    endif()
  endforeach()
  if(lists)
    set(file ${CMAKE_CURRENT_BINARY_DIR}/${name}_lists.cmake)
    file(WRITE ${file} "if(${name}_TESTS)\n"
      "  set_tests_properties(\${${name}_TESTS} PROPERTIES${lists})\nendif()\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${file})
  endif()
  quorvik_test_whole(${name} TIMEOUT ${P_TIMEOUT} LABELS ${P_LABELS} ENVIRONMENT ${P_ENVIRONMENT})
endfunction()

# quorvik_test's program as a whole: all its tests in one process, in three orders. Only
# `ctest -C whole` runs these (tools/test whole).
function(quorvik_test_whole name)
  cmake_parse_arguments(P "" "TIMEOUT" "LABELS;ENVIRONMENT" ${ARGN})
  math(EXPR seconds "${P_TIMEOUT} - 3")
  foreach(round 1 2 3)
    set(test whole:${name}:${round})
    add_test(NAME ${test} CONFIGURATIONS whole
      COMMAND ${name} --seconds=${seconds} --gtest_shuffle --gtest_brief=1)
    set_tests_properties(${test} PROPERTIES TIMEOUT 1200)
    foreach(property LABELS ENVIRONMENT)
      if(P_${property})
        set_property(TEST ${test} PROPERTY ${property} ${P_${property}})
      endif()
    endforeach()
  endforeach()
endfunction()

# quorvik_bench(NAME SOURCES... [LIBS ...])
function(quorvik_bench name)
  cmake_parse_arguments(P "" "" "LIBS" ${ARGN})
  add_executable(bench_${name} ${P_UNPARSED_ARGUMENTS})
  set_target_properties(bench_${name} PROPERTIES OUTPUT_NAME ${name}
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
  target_link_libraries(bench_${name} PRIVATE quorvik_options ${P_LIBS})
endfunction()

# A room may be empty while it is being built: a subdirectory is taken when it has a build file.
function(quorvik_optional_subdirectory dir)
  if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/CMakeLists.txt)
    add_subdirectory(${dir})
  endif()
endfunction()

# quorvik_archives(VARIABLE NAMES...): the libraries as archives where there are any, since every
# shared one is mapped and relocated at every start; a static archive costs what is used of it.
function(quorvik_archives variable)
  set(found)
  foreach(library ${ARGN})
    find_library(quorvik_lib_${library} NAMES lib${library}.a ${library} REQUIRED)
    list(APPEND found ${quorvik_lib_${library}})
  endforeach()
  set(${variable} ${found} PARENT_SCOPE)
endfunction()
