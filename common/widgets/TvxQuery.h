// The query box: a prompt, one control for the value (by the mode), Accept, Cancel and an
// optional third button. All logic is in QueryBoxModel; this window shows it.
#pragma once

#include "common/QueryBoxModel.h"

#include <QDialog>

#include <array>
#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace tvx {

class SystemServices;

class TvxQuery : public QDialog {
  Q_OBJECT

public:
  // Captions are translated by services (none: the design captions).
  explicit TvxQuery(QWidget* parent = nullptr, const SystemServices* services = nullptr);

  // QUERY: shows the question modally and gives the answer.
  QueryAnswer QUERY(const QueryRequest& request);
  // QUERY up to its modal loop: fills and shows the mode's control, sizes and centres the window.
  void load(const QueryRequest& request);
  const QueryBoxModel& model() const { return *model_; }
  // Ctrl+F1 opens the help through this.
  void setHelpHandler(std::function<void()> help) { help_ = std::move(help); }

  QLineEdit* txtText = nullptr;
  QComboBox* cboCombo = nullptr;
  QComboBox* cboDropdown = nullptr;
  QPlainTextEdit* txtTextBlock = nullptr;
  QListWidget* cboList = nullptr;
  QLabel* lblPrompt = nullptr;
  QPushButton* cmdAccept = nullptr;
  QPushButton* cmdCancel = nullptr;
  QPushButton* F_Button = nullptr;

protected:
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  // The controls by mode, from mode 1; the mode's control.
  std::array<QWidget*, 5> controls() const;
  QWidget* control() const;
  void clearControls();
  void cmdAccept_Click();
  void sizeForPrompt();

  std::optional<QueryBoxModel> model_;
  std::function<void()> help_;
};

}  // namespace tvx
