#pragma once
// A control reading a "VTL2" trace buffer out of a register image through its public
// interface, the host answering inside each request; a user buffer file in a fresh directory
// describes the records. Records written into the ring are read at the next poll.

#include <fstream>
#include <string>
#include <vector>

#include "support/export_files_under_test.h"
#include "support/recording_host.h"
#include "support/temp_dir.h"

namespace vantrel::testing {

struct LiveTrace : ControlFixture {
  static constexpr int32_t kStartRegister = 100;
  static constexpr int32_t kBuffer = 1000;  // the header's first register
  static constexpr int32_t kRing = 10;
  static constexpr int32_t kInterval = 100;

  // `columns` are the file's column lines: "register,Type,position,x,width,Caption,%code,0".
  LiveTrace(const std::vector<std::string>& columns, int16_t recordLength)
      : recordLength_(recordLength) {
    std::string file =
        "[VANTREL]\r\nUserBuffer=1\r\n[USER_BUFFER]\r\nTitle=Test trace\r\n"
        "HeaderKey=TST1\r\nHeaderType=1\r\nRecordLenght=" +
        std::to_string(recordLength) + "\r\nColumn=" + std::to_string(columns.size()) + "\r\n";
    for (size_t i = 0; i < columns.size(); ++i)
      file += "Column" + std::to_string(i + 1) + "=" + columns[i] + "\r\n";
    std::ofstream(dir.File("trace.vtlr"), std::ios::binary) << file;

    // Exports without a file name go to the test's directory.
    control.reset();
    control.emplace(
        host, ControlServices{loop, loop.Clock(), prompts, nullptr, ".", dir.Path().string()});
    host.control = &*control;
    host.answer = RecordingHost::Answer::Inside;
    auto& r = host.image.registers;
    r[kStartRegister] = kBuffer;
    r[kBuffer] = Packed("VTL2");
    r[kBuffer + 1] = Packed("TST1");
    r[kBuffer + 2] = 1;    // version
    r[kBuffer + 3] = 200;  // buffer length
    r[kBuffer + 7] = kRing;
    control->SetExportFiles(&ExportFilesUnderTest());
    control->SetUserFile(dir.File("trace.vtlr"));
    control->SetStartRegister(kStartRegister);
    control->SetInterval(kInterval);
    control->Start();
    control->SetRunMode(2);
  }

  // Writes records into the next slots of the ring and counts them.
  void Write(const std::vector<std::vector<int32_t>>& records) {
    auto& r = host.image.registers;
    for (const auto& record : records) {
      for (size_t i = 0; i < record.size(); ++i)
        r[kBuffer + 16 + writeIndex * recordLength_ + static_cast<int32_t>(i)] = record[i];
      writeIndex = (writeIndex + 1) % kRing;
      ++counter;
    }
    r[kBuffer + 4] = counter;
    r[kBuffer + 5] = writeIndex;
  }
  // The controller's command word and export index, seen at the next poll.
  void Command(int32_t word, int32_t exportIndex = 0) {
    host.image.registers[kBuffer + 8] = word;
    host.image.registers[kBuffer + 10] = exportIndex;
  }
  void Poll() { loop.Advance(kInterval); }
  // Writes the records and lets the control read them.
  void Add(const std::vector<std::vector<int32_t>>& records) {
    Write(records);
    Poll();
  }

  std::vector<std::string> Row(int r) const {
    std::vector<std::string> cells;
    for (int c = 0; c < control->Table().ColumnCount(); ++c)
      cells.emplace_back(control->Table().Text(r, c));
    return cells;
  }
  int DataRows() const { return control->Table().DataRowCount(); }
  std::vector<std::string> Lines() const {
    std::vector<std::string> out;
    for (const auto& e : host.Named("OutputLine"))
      out.push_back(e.text);
    return out;
  }

  TempDir dir;
  int32_t counter = 0;
  int32_t writeIndex = 0;

 private:
  int32_t recordLength_;
};

}  // namespace vantrel::testing
