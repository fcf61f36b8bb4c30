quorvik_fuzz(events ${CMAKE_CURRENT_LIST_DIR}/events.cc LIBS xw)
