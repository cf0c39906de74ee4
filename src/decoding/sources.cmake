target_sources(vantrel PRIVATE
  decoding/cell_reading.cpp
  decoding/record_cells.cpp
  decoding/field_readers.cpp
  decoding/record_decoder.cpp
  decoding/row_store.cpp
  decoding/stamps.cpp
  decoding/table_layout.cpp
  decoding/table_model.cpp)
