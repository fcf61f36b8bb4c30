quorvik_fuzz(match_name ${CMAKE_CURRENT_LIST_DIR}/match_name.cc LIBS os)
quorvik_fuzz(app_path ${CMAKE_CURRENT_LIST_DIR}/app_path.cc LIBS os)
quorvik_fuzz(server_replies ${CMAKE_CURRENT_LIST_DIR}/server_replies.cc LIBS nc)
