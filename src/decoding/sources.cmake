target_sources(vantrel PRIVATE
  decoding/buffer_walk.cpp
  decoding/cell_reading.cpp
  decoding/record_cells.cpp
  decoding/field_readers.cpp
  decoding/grid_setup.cpp
  decoding/record_decoder.cpp
  decoding/row_bookkeeping.cpp
  decoding/row_history.cpp
  decoding/row_limit.cpp
  decoding/stamps.cpp
  decoding/table_model.cpp)
