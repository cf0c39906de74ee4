#pragma once
// The trace description: what a description or user buffer file says about the records.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vantrel {

struct ColumnDef {
  int16_t Defined = 0;
  int16_t Marked = 0;
  int32_t Width = 0;
  std::string Caption;
  int16_t RegisterIndex = 0;
  int16_t FieldType = 0;
  std::string DisplayCode;
  int16_t Position = 0;
  std::string DefaultText;
  std::vector<std::string> ValueTexts;
  std::vector<int32_t> Values;
  int32_t StringLength = 0;
  int16_t ExtraRegisters = 0;
};

struct TraceDescription {
  std::string DescriptionFile;
  std::string HeaderApp;
  std::string HeaderKeyText;
  int32_t DescVersion = 0;
  int16_t CounterIndex = 4;
  int16_t RecordLength = 0;
  std::string StringIndex;
  std::string Title;
  int16_t DefaultColumnWidth = 0;
  std::string InfoText;
  int16_t ColumnCount = 0;
  std::array<ColumnDef, 128> Columns{};
  bool SymbolFileLoaded = false;
};

}  // namespace vantrel
