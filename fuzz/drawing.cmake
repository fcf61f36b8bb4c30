quorvik_fuzz(drawing_calls drawing_calls.cc LIBS xw)
quorvik_fuzz(text text.cc LIBS xw)
quorvik_fuzz(icon icon.cc LIBS xw)
