#pragma once
// The viewer's settings dialog: the control's main properties, read from the control when
// the dialog opens and set on it (through its setters) when the user accepts.

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

namespace vantrel {
class Control;
}

namespace vantrel::viewer {

class SettingsDialog final : public QDialog {
  Q_OBJECT

 public:
  SettingsDialog(Control& control, QWidget* parent = nullptr);

  // Sets the edited values on the control; only values that changed are set, so that an
  // unchanged property is not marked changed.
  void Apply();

  QLineEdit* ResourcePath() const { return resourcePath_; }
  QSpinBox* Interval() const { return interval_; }
  QSpinBox* MaxRows() const { return maxRows_; }
  QSpinBox* MaxGraph() const { return maxGraph_; }
  QCheckBox* DateStampCol() const { return dateStampCol_; }
  QLineEdit* ExportFile() const { return exportFile_; }
  QComboBox* IndexFile() const { return indexFile_; }
  QComboBox* ExportFormat() const { return exportFormat_; }
  QLineEdit* HistoryFile() const { return historyFile_; }

 private:
  void Load();

  Control& control_;
  QLineEdit* resourcePath_;
  QLineEdit* projectPath_;
  QLineEdit* userFile_;
  QLineEdit* symbFile_;
  QSpinBox* startRegister_;
  QSpinBox* interval_;
  QSpinBox* maxRows_;
  QSpinBox* maxGraph_;
  QCheckBox* dateStampCol_;
  QCheckBox* timeStampCol_;
  QCheckBox* pcdStatusCol_;
  QLineEdit* exportFile_;
  QComboBox* indexFile_;
  QComboBox* exportFormat_;
  QCheckBox* autoExport_;
  QLineEdit* historyFile_;
  QLineEdit* gridFontName_;
  QLineEdit* gridFontSize_;
};

}  // namespace vantrel::viewer
