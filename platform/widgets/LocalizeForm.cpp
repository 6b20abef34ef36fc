#include "platform/widgets/LocalizeForm.h"

#include "platform/InterfaceFont.h"
#include "platform/SystemServices.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QPalette>
#include <QStackedWidget>
#include <QTabWidget>
#include <QVariant>
#include <QWidget>

namespace tvx {

namespace {

constexpr const char* DesignCaptionProperty = "DesignCaption";
const QColor ClassicLightGrey(192, 192, 192);  // 12632256

// The caption of the tab that shows page, and the tab widget, when page is a tab page.
QTabWidget* tabOwner(QWidget* page) {
  QWidget* stack = page->parentWidget();
  if (!qobject_cast<QStackedWidget*>(stack))
    return nullptr;
  return qobject_cast<QTabWidget*>(stack->parentWidget());
}

QString captionOf(QObject* object, bool isForm) {
  if (auto* action = qobject_cast<QAction*>(object))
    return action->text();
  auto* widget = qobject_cast<QWidget*>(object);
  if (!widget)
    return {};
  if (isForm)
    return widget->windowTitle();
  if (auto* b = qobject_cast<QAbstractButton*>(widget))
    return b->text();
  if (auto* l = qobject_cast<QLabel*>(widget))
    return l->text();
  if (auto* g = qobject_cast<QGroupBox*>(widget))
    return g->title();
  if (auto* m = qobject_cast<QMenu*>(widget))
    return m->title();
  if (QTabWidget* tabs = tabOwner(widget))
    return tabs->tabText(tabs->indexOf(widget));
  return widget->windowTitle();
}

void setCaption(QObject* object, bool isForm, const QString& text) {
  if (auto* action = qobject_cast<QAction*>(object)) {
    action->setText(text);
    return;
  }
  auto* widget = qobject_cast<QWidget*>(object);
  if (!widget)
    return;
  if (isForm)
    widget->setWindowTitle(text);
  else if (auto* b = qobject_cast<QAbstractButton*>(widget))
    b->setText(text);
  else if (auto* l = qobject_cast<QLabel*>(widget))
    l->setText(text);
  else if (auto* g = qobject_cast<QGroupBox*>(widget))
    g->setTitle(text);
  else if (auto* m = qobject_cast<QMenu*>(widget))
    m->setTitle(text);
  else if (QTabWidget* tabs = tabOwner(widget))
    tabs->setTabText(tabs->indexOf(widget), text);
  else
    widget->setWindowTitle(text);
}

void translate(QObject* object, bool isForm, const SystemServices& services) {
  const QString tag = object->property(TagProperty).toString();
  if (tag.isEmpty())
    return;
  QVariant design = object->property(DesignCaptionProperty);
  if (!design.isValid()) {
    design = captionOf(object, isForm);
    object->setProperty(DesignCaptionProperty, design);
  }
  const std::string text =
      services.LocalMessage(design.toString().toStdString(), tag.toStdString());
  setCaption(object, isForm, QString::fromStdString(text));
}

}  // namespace

void LocalizeForm(QWidget* form, const SystemServices& services, const InterfaceFont& font) {
  if (!form)
    return;
  translate(form, true, services);

  QPalette palette = form->palette();
  if (palette.color(QPalette::Window) == ClassicLightGrey) {
    palette.setColor(QPalette::Window, QApplication::palette().color(QPalette::Window));
    form->setPalette(palette);
  }

  const QString family = QString::fromStdString(font.Name);
  QFont formFont = form->font();
  if (!family.isEmpty())
    formFont.setFamily(family);
  if (font.Size > 0)
    formFont.setPointSize(font.Size);
  formFont.setBold(false);
  form->setFont(formFont);

  for (QWidget* child : form->findChildren<QWidget*>()) {
    QFont f = child->font();
    if (!family.isEmpty())
      f.setFamily(family);
    f.setBold(false);
    child->setFont(f);
    translate(child, false, services);
  }
  for (QAction* action : form->findChildren<QAction*>())
    translate(action, false, services);
}

}  // namespace tvx
