// The font of all windows: the desktop's, unless the user's language needs a script it lacks.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class QLocale;
class QWidget;

namespace tvx {

struct InterfaceFont {
  std::string Name;
  int Size = 9;         // points
  int32_t Charset = 0;  // the character set number of the language, kept for the suite
};

// Scripts that a Western desktop font usually lacks.
enum class CjkScript { None, TraditionalChinese, SimplifiedChinese, Japanese, Korean };

CjkScript scriptNeeded(const QLocale& locale);
// Characters that a font must hold to write the script (UTF-8); empty for None.
std::string sampleCharacters(CjkScript script);
// The character set number of a language: 136, 134, 128, 129 for the scripts above, else the
// number of the language's code page family (0 for Western languages).
int32_t charsetOf(const QLocale& locale);

// Chooses the family: desktop when the script needs nothing or desktop has the characters,
// otherwise the first candidate that has them, otherwise desktop.
std::string chooseFamily(
    const std::string& desktop, const std::string& sample,
    const std::vector<std::string>& candidates,
    const std::function<bool(const std::string& family, const std::string& sample)>& hasCharacters);

// The interface font for locale (the system's by default): the desktop's general font and size,
// a family with the script's characters where the language needs one. Needs a QGuiApplication.
InterfaceFont SelectInterfaceFont(const QLocale& locale);
InterfaceFont SelectInterfaceFont();

}  // namespace tvx
