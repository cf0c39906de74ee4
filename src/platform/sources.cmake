target_sources(vantrel PRIVATE
  platform/date_serial.cpp
  platform/encoding.cpp
  platform/export_file.cpp
  platform/manual_clock.cpp
  platform/manual_event_loop.cpp
  platform/numbers.cpp
  platform/paths.cpp
  platform/property_bag.cpp
  platform/scripted_prompts.cpp
  platform/system_clock.cpp
  platform/text.cpp
  platform/text_file.cpp)
