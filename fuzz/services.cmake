quorvik_fuzz(match_name ${CMAKE_CURRENT_LIST_DIR}/match_name.cc LIBS os)
quorvik_fuzz(app_path ${CMAKE_CURRENT_LIST_DIR}/app_path.cc LIBS os)
quorvik_fuzz(mount_table ${CMAKE_CURRENT_LIST_DIR}/mount_table.cc LIBS os)
quorvik_fuzz(folder_names ${CMAKE_CURRENT_LIST_DIR}/folder_names.cc LIBS os)
