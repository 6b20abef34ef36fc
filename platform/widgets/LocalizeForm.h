// Translating a window: captions from the catalogue by each widget's tag, and the interface font.
#pragma once

class QWidget;

namespace tvx {

class SystemServices;
struct InterfaceFont;

// The dynamic property that holds a widget's or action's message id.
inline constexpr const char* TagProperty = "Tag";

// Translates form and everything in it. A window, widget or action whose "Tag" property is not
// empty takes LocalMessage(design caption, Tag) as its caption; the design caption is remembered
// at the first call, so that a later language without the id falls back to it. The caption is a
// window's title, a button's, label's or action's text, a group box's or menu's title, a tab
// page's tab text. A form with the classic light grey background takes the desktop's window
// colour. The form takes the font's family and size; every widget in it the family, not bold.
void LocalizeForm(QWidget* form, const SystemServices& services, const InterfaceFont& font);

}  // namespace tvx
