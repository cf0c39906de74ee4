target_sources(vantrel PRIVATE
  output/graph.cpp
  output/graph_model.cpp
  output/pending_steps.cpp)
