target_sources(vantrel PRIVATE
  symbols/symbol_collection.cpp
  symbols/symbol_file.cpp
  symbols/value_text_file.cpp
  symbols/value_texts.cpp)
