target_sources(vantrel PRIVATE
  decoding/buffer_walk.cpp
  decoding/grid_setup.cpp
  decoding/pending_decoder.cpp
  decoding/row_bookkeeping.cpp
  decoding/row_limit.cpp
  decoding/stamps.cpp)
if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/field_readers.cpp)
  target_sources(vantrel PRIVATE decoding/field_readers.cpp)
endif()
