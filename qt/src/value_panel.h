#pragma once
// The value conversion panel that a double-click on a data cell opens: the cell's raw value
// (the register value behind the text shown) in decimal, hexadecimal, binary and as
// characters. One panel per widget, reused for every cell.

#include <QDialog>
#include <cstdint>
#include <optional>
#include <string_view>

class QLabel;

namespace vantrel::qt {

struct RawValueTexts {
  QString decimal;
  QString hexadecimal;  // the 32-bit pattern, eight digits
  QString binary;       // the 32-bit pattern, four groups of eight
  QString characters;   // the four bytes as characters, most significant first, quoted
};

RawValueTexts ConvertRawValue(int64_t value);

// The raw value of data column `dataColumn` (0 for the first trace column) in a row's
// raw-value line (values joined by ";"). Nothing when the line has no such value or it is
// not a whole number. A string column adds one value before its own; the line then holds
// more values than the row has data columns and the values after it are counted as they
// stand (see `RawLineAligned`).
std::optional<int64_t> RawValueOfCell(std::string_view rawLine, int dataColumn);
// Whether the line holds exactly one value per data column.
bool RawLineAligned(std::string_view rawLine, int dataColumns);

class ValuePanel final : public QDialog {
  Q_OBJECT

 public:
  explicit ValuePanel(QWidget* parent = nullptr);

  // Shows the cell: its column caption, record number and text, and the conversions of its
  // raw value (or why there is none).
  void ShowCell(const QString& caption, const QString& record, const QString& text,
                std::optional<int64_t> raw, bool aligned);

  QLabel* Decimal() const { return decimal_; }
  QLabel* Hexadecimal() const { return hexadecimal_; }
  QLabel* Binary() const { return binary_; }
  QLabel* Characters() const { return characters_; }
  QLabel* Cell() const { return cell_; }
  QLabel* Note() const { return note_; }

 private:
  QLabel* cell_;
  QLabel* decimal_;
  QLabel* hexadecimal_;
  QLabel* binary_;
  QLabel* characters_;
  QLabel* note_;
};

}  // namespace vantrel::qt
