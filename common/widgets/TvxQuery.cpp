#include "common/widgets/TvxQuery.h"

#include "common/widgets/HelpKey.h"
#include "platform/SystemServices.h"
#include "platform/widgets/WindowHelpers.h"
#include "platform/widgets/WindowPlace.h"

#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace tvx {

namespace {

constexpr int DesignWidth = 6000 / TwipsPerPixel;

bool isEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

QString shown(const std::string& text) {
  return QString::fromStdString(text).replace("\r\n", "\n");
}

}  // namespace

TvxQuery::TvxQuery(QWidget* parent, const SystemServices* services) : QDialog(parent) {
  setObjectName("TvxQuery");
  const auto caption = [services](const char* text, const char* id) {
    return QString::fromStdString(services ? services->LocalMessage(text, id) : text);
  };
  auto* grid = new QGridLayout(this);
  lblPrompt = new QLabel(this);
  lblPrompt->setObjectName("lblPrompt");
  lblPrompt->setWordWrap(true);
  lblPrompt->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  // The prompt takes the room the control and the buttons leave, and no more.
  lblPrompt->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  grid->addWidget(lblPrompt, 0, 0);

  auto* buttons = new QVBoxLayout;
  cmdAccept = new QPushButton(caption("Accept", "900103"), this);
  cmdAccept->setObjectName("cmdAccept");
  cmdCancel = new QPushButton(caption("Cancel", "99388"), this);
  cmdCancel->setObjectName("cmdCancel");
  buttons->addWidget(cmdAccept);
  buttons->addWidget(cmdCancel);
  buttons->addStretch(1);
  grid->addLayout(buttons, 0, 1);

  txtText = new QLineEdit(this);
  txtText->setObjectName("txtText");
  cboCombo = new QComboBox(this);
  cboCombo->setObjectName("cboCombo");
  cboCombo->setEditable(true);
  cboCombo->setInsertPolicy(QComboBox::NoInsert);
  // What is typed stays as typed: an inline completion would turn a typed "1" into the row "1.5"
  // on Return, and a value the prompt must refuse would be taken as another.
  cboCombo->setCompleter(nullptr);
  cboDropdown = new QComboBox(this);
  cboDropdown->setObjectName("cboDropdown");
  txtTextBlock = new QPlainTextEdit(this);
  txtTextBlock->setObjectName("txtTextBlock");
  cboList = new QListWidget(this);
  cboList->setObjectName("cboList");
  for (QWidget* c : controls()) {
    c->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    c->hide();
    grid->addWidget(c, 1, 0, 1, 2);
  }
  F_Button = new QPushButton(this);
  F_Button->setObjectName("F_Button");
  F_Button->hide();
  grid->addWidget(F_Button, 2, 0, Qt::AlignLeft);

  // Enter is the window's own (see keyPressEvent), never a default button's.
  for (QPushButton* b : {cmdAccept, cmdCancel, F_Button})
    b->setAutoDefault(false);
  connect(cmdAccept, &QPushButton::clicked, this, [this] { cmdAccept_Click(); });
  connect(cmdCancel, &QPushButton::clicked, this, [this] {
    model_->Cancel();
    reject();
  });
  connect(F_Button, &QPushButton::clicked, this, [this] {
    model_->FButton();
    done(QDialog::Accepted);
  });
  // The editable list keeps Enter from the window (and would put its current row back first).
  cboCombo->installEventFilter(this);
}

QWidget* TvxQuery::control() const { return controls()[size_t(model_->Mode()) - 1]; }

void TvxQuery::load(const QueryRequest& request) {
  model_.emplace(request);
  clearControls();
  setWindowTitle(QString::fromStdString(request.title));
  QStringList rows;
  for (const std::string& row : model_->rows())
    rows << QString::fromStdString(row);
  const QString start = shown(model_->startText());
  switch (model_->Mode()) {
  case QueryMode::Text:
    txtText->setText(start);
    txtText->selectAll();
    break;
  case QueryMode::Combo:
    cboCombo->addItems(rows);
    cboCombo->setEditText(start);
    cboCombo->lineEdit()->selectAll();
    break;
  case QueryMode::Dropdown:
    cboDropdown->addItems(rows);
    cboDropdown->setCurrentIndex(model_->startRow());
    break;
  case QueryMode::TextBlock:
    txtTextBlock->setPlainText(start);
    txtTextBlock->selectAll();
    break;
  case QueryMode::List:
    cboList->addItems(rows);
    cboList->setCurrentRow(model_->startRow());
    break;
  }
  control()->show();
  control()->setFocus();
  lblPrompt->setText(shown(request.prompt));
  F_Button->setVisible(request.showButton);
  F_Button->setText(QString::fromStdString(request.buttonCaption));
  sizeForPrompt();
}

void TvxQuery::sizeForPrompt() {
  setFixedWidth(DesignWidth);
  layout()->activate();
  const QRect screenArea = screen()->geometry();
  QueryMeasures m;
  m.promptWidth = lblPrompt->width() * TwipsPerPixel;
  QString oneLine = lblPrompt->text();
  m.promptTextWidth =
      lblPrompt->fontMetrics().horizontalAdvance(oneLine.remove('\n')) * TwipsPerPixel;
  m.letterHeight = lblPrompt->fontMetrics().height() * TwipsPerPixel;
  m.controlHeight = control()->sizeHint().height() * TwipsPerPixel;
  m.buttonHeight = F_Button->sizeHint().height() * TwipsPerPixel;
  m.screenHeight = screenArea.height() * TwipsPerPixel;
  resize(DesignWidth, QueryHeight(*model_, m) / TwipsPerPixel);
  const FormPlace place = SetForm(screenArea.width(), screenArea.height(), width(), height());
  move(screenArea.left() + place.left, screenArea.top() + place.top);
}

QueryAnswer TvxQuery::QUERY(const QueryRequest& request) {
  load(request);
  // The box stands over every window while it is up.
  SetTopMost(*this, true);
  const QPointer<TvxQuery> self(this);
  exec();
  // A box whose owner went during the loop went with it: that counts as closing.
  return self ? model_->answer() : QueryAnswer{};
}

void TvxQuery::cmdAccept_Click() {
  switch (model_->Mode()) {
  case QueryMode::Combo:
    model_->Accept(cboCombo->currentText().toStdString(), 0);
    break;
  case QueryMode::Dropdown:
    model_->Accept({}, cboDropdown->currentIndex());
    break;
  case QueryMode::TextBlock:
    model_->Accept(txtTextBlock->toPlainText().toStdString(), 0);
    break;
  case QueryMode::List:
    model_->Accept({}, cboList->currentRow());
    break;
  default:
    model_->Accept(txtText->text().toStdString(), 0);
    break;
  }
  clearControls();
  done(QDialog::Accepted);
}

void TvxQuery::clearControls() {
  txtText->clear();
  cboCombo->clear();
  cboDropdown->clear();
  txtTextBlock->clear();
  cboList->clear();
  for (QWidget* c : controls())
    c->hide();
}

std::array<QWidget*, 5> TvxQuery::controls() const {
  return {txtText, cboCombo, cboDropdown, txtTextBlock, cboList};
}

void TvxQuery::keyPressEvent(QKeyEvent* event) {
  if (isEnter(*event) && model_ && model_->Mode() != QueryMode::TextBlock) {
    cmdAccept_Click();
    return;
  }
  QDialog::keyPressEvent(event);
}

bool TvxQuery::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && isEnter(*static_cast<QKeyEvent*>(event))) {
    cmdAccept_Click();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void TvxQuery::keyReleaseEvent(QKeyEvent* event) {
  if (isHelpKey(*event) && help_) {
    help_();
    return;
  }
  QDialog::keyReleaseEvent(event);
}

}  // namespace tvx
