#pragma once
// The events a control raises to its host, in the order the control declares them. A host
// derives from ControlEvents and overrides what it answers; every default does nothing.

#include <cstdint>
#include <string_view>

namespace vantrel {

class ControlEvents {
 public:
  virtual ~ControlEvents() = default;

  virtual void Click() {}
  virtual void DblClick() {}
  virtual void Resize() {}
  virtual void NewExportFile() {}
  // The control needs `NumberToRead` registers from `RegisterNumber` on; answer with
  // Control::SetDataBlock, inside this call or later.
  virtual void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) {
    (void)RegisterNumber, (void)NumberToRead;
  }
  // The same for words of a data block.
  virtual void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) {
    (void)DBNumber, (void)DBOffset, (void)NumberToRead;
  }
  virtual void ModulError(int16_t ErrType, std::string_view ErrMessage) {
    (void)ErrType, (void)ErrMessage;
  }
  // One table row as text, cells joined by tabs.
  virtual void OutputLine(std::string_view DataLine) { (void)DataLine; }
  // The reading state changed; `ReadStatus` is the new state.
  virtual void Status(int16_t ReadStatus) { (void)ReadStatus; }
  virtual void PCDCmd(int16_t Cmd) { (void)Cmd; }
};

}  // namespace vantrel
