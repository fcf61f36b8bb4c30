foreach(name events tree pointer controls menus)
  quorvik_bench(${name} ${CMAKE_CURRENT_LIST_DIR}/${name}.cc LIBS xw)
endforeach()
