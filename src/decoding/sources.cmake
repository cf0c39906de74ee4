target_sources(vantrel PRIVATE
  decoding/buffer_walk.cpp
  decoding/grid_setup.cpp
  decoding/row_limit.cpp)
if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/field_readers.cpp)
  target_sources(vantrel PRIVATE decoding/field_readers.cpp)
endif()
