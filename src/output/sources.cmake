target_sources(vantrel PRIVATE
  output/graph_model.cpp
  output/graph_view.cpp
  output/recorded_export.cpp
  output/excel_file.cpp
  output/export_service.cpp
  output/export_naming.cpp
  output/trace_export.cpp
  output/csv_export.cpp
  output/table_export.cpp)
