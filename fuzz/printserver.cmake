quorvik_fuzz(records records.cc LIBS nc)
quorvik_fuzz(ticket ticket.cc LIBS printserverd_core)
