target_sources(vantrel PRIVATE
  platform/encoding.cpp
  platform/manual_clock.cpp
  platform/numbers.cpp
  platform/paths.cpp
  platform/scripted_prompts.cpp
  platform/system_clock.cpp
  platform/text.cpp)
