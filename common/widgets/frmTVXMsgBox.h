// The message box with the buttons Yes, No, Yes To All and Cancel. All logic is in
// MessageBoxModel; this window shows it.
#pragma once

#include "common/MessageBoxModel.h"

#include <QDialog>

#include <array>

class QLabel;
class QPushButton;

namespace tvx {

class SystemServices;

class frmTVXMsgBox : public QDialog {
  Q_OBJECT

public:
  explicit frmTVXMsgBox(const SystemServices& services, QWidget* parent = nullptr);

  // Shows the prompt modally; the result of the button pressed: 6, 7, 8, or 2 (also on closing).
  int16_t ShowMe(const std::string& prompt, int flags, const std::string& title);
  // ShowMe up to its modal loop: texts, tab order, the size for the prompt, centred.
  void load(const std::string& prompt, int flags, const std::string& title);
  const MessageBoxModel& model() const { return model_; }

  std::array<QPushButton*, MessageBoxModel::ButtonCount> cmdBut{};
  QLabel* lblPrompt = nullptr;
  QLabel* Image1 = nullptr;

protected:
  void keyPressEvent(QKeyEvent* event) override;

private:
  void cmdBut_Click(int index);

  MessageBoxModel model_;
};

}  // namespace tvx
