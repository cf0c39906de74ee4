target_sources(vantrel PRIVATE
  control/clear.cpp
  control/control.cpp
  control/control_properties.cpp
  control/controller_commands.cpp
  control/export_control.cpp
  control/graph_control.cpp
  control/layout.cpp
  control/module.cpp
  control/property_persistence.cpp
  control/resource_paths.cpp
  control/row_intake.cpp
  control/run_control.cpp
  control/trace_loading.cpp)
