target_sources(vantrel PRIVATE
  acquisition/buffer_checks.cpp
  acquisition/controller_status.cpp
  acquisition/reading_cycle.cpp
  acquisition/simulated_controller.cpp
  acquisition/string_columns.cpp)
