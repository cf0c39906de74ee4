target_sources(vantrel PRIVATE
  description/cipher.cpp
  description/column_parser.cpp
  description/description_loader.cpp
  description/directory_search.cpp
  description/locator.cpp
  description/profile_file.cpp
  description/user_buffer.cpp)
