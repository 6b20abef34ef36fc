// The print preview window: the tool bar atvPrev over the model's tools, the scale and zoom
// boxes, the thumbnails in picContainer (each a ViewPicture with a kernel device of its own),
// the page buttons, the status bar staMsg and the printing timer. The logic is PreviewModel's
// and PrintOutput's.
#pragma once

#include "print/PreviewModel.h"
#include "print/PrintOutput.h"

#include <QDialog>

#include <functional>
#include <memory>
#include <vector>

class QComboBox;
class QFrame;
class QLabel;
class QMenu;
class QScrollBar;
class QStatusBar;
class QTimer;
class QToolBar;
class QToolButton;
class QWidget;

namespace tvx {

class Graphics;
class QtPrinter;
class UserStore;
class ViewPicture;

// What the owner of the preview lends it.
struct PreviewHost {
  Graphics& graphics;
  QtPrinter& printer;
  PrinterSettings& record;
  UserStore* store = nullptr;
  UserPrompts* prompts = nullptr;
  const SystemServices* services = nullptr;
  int32_t displayUnit = 1;
  std::string importFolder;
  std::string productName = "Tarvex";
  int mainWidth = 0;  // the width of the main window's strip, in pixels ("MAINWIDTH")
  PreviewModel::DrawCallback draw;
  std::function<void()> help;
};

class TvxPreview : public QDialog {
  Q_OBJECT

public:
  TvxPreview(PreviewHost& host, QWidget* parent = nullptr);
  ~TvxPreview() override;

  // Shows the preview of frame modally; the result is whether it closed through ATB_UpdClose.
  bool ShowPreview(FrameRect& frame, const std::string& caption, int32_t drawFlags,
                   int32_t& status);
  bool ShowPrnMgrPreview(FrameRect& frame, const std::string& caption, int32_t drawFlags,
                         bool plainPreview, PrintManagerRecord& manager, int32_t& status);

  // Builds and lays out without showing modally: for tests and for ShowPreview.
  void Open(const FrameRect& frame, const std::string& caption, int32_t drawFlags);
  void RedrawScreen();
  PreviewModel& model() { return model_; }
  PrintOutput& output() { return output_; }
  std::string panelText(int panel) const;
  // Ends a print pass that is running and closes: the host's "EX".
  void closeNow();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

private:
  void buildTools();
  QAction* tool(const char* name, const char* id, const char* text, QMenu* menu = nullptr);
  void runCommand(const std::string& name);
  void act(PreviewAction action);
  void afterDialog(bool changed);
  void showGrid();
  void paintCell(size_t cell);
  void updateTexts();
  void restorePlace();
  void saveAndRelease();
  double pixelsPerMm() const;

  PreviewHost& host_;
  PreviewModel model_;
  PrintOutput output_;
  PrintManagerRecord* manager_ = nullptr;
  bool updated_ = false;
  bool closeAfterPass_ = false;

  QToolBar* atvPrev_ = nullptr;
  QComboBox* precision_ = nullptr;
  QComboBox* zoom_ = nullptr;
  QMenu* popup_ = nullptr;
  QMenu* closeBand_ = nullptr;
  QMenu* horizontal_ = nullptr;
  QMenu* vertical_ = nullptr;
  QWidget* picContainer_ = nullptr;
  QFrame* shpHlight_ = nullptr;
  QScrollBar* vscScroll_ = nullptr;
  QScrollBar* hscScroll_ = nullptr;
  QToolButton* cmdPages_[3] = {};
  QStatusBar* staMsg_ = nullptr;
  QLabel* panels_[3] = {};
  QTimer* timPrinting_ = nullptr;
  struct Thumb {
    ViewPicture* picture = nullptr;
    int32_t device = 0;
    bool dirty = true;
  };
  std::vector<Thumb> thumbs_;
};

}  // namespace tvx
