#include "platform/InterfaceFont.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QLocale>
#include <QString>

namespace tvx {

CjkScript scriptNeeded(const QLocale& locale) {
  switch (locale.language()) {
  case QLocale::Chinese: {
    const bool traditional =
        locale.script() == QLocale::TraditionalChineseScript ||
        (locale.script() == QLocale::AnyScript &&
         (locale.territory() == QLocale::Taiwan || locale.territory() == QLocale::HongKong ||
          locale.territory() == QLocale::Macao));
    return traditional ? CjkScript::TraditionalChinese : CjkScript::SimplifiedChinese;
  }
  case QLocale::Japanese:
    return CjkScript::Japanese;
  case QLocale::Korean:
    return CjkScript::Korean;
  default:
    return CjkScript::None;
  }
}

std::string sampleCharacters(CjkScript script) {
  // The characters of each script's classic interface font name.
  switch (script) {
  case CjkScript::TraditionalChinese:
    return "\xE6\x96\xB0\xE7\xB4\xB0\xE6\x98\x8E\xE9\xAB\x94";  // U+65B0 U+7D30 U+660E U+9AD4
  case CjkScript::SimplifiedChinese:
    return "\xE5\xAE\x8B\xE4\xBD\x93";  // U+5B8B U+4F53
  case CjkScript::Japanese:
    // U+FF2D U+FF33 U+FF30 U+30B4 U+30B7 U+30C3 U+30AF
    return "\xEF\xBC\xAD\xEF\xBC\xB3\xEF\xBC\xB0\xE3\x82\xB4\xE3\x82\xB7\xE3\x83\x83\xE3\x82\xAF";
  case CjkScript::Korean:
    return "\xEA\xB5\xB4\xEB\xA6\xBC";  // U+AD74 U+B9BC
  case CjkScript::None:
    break;
  }
  return {};
}

int32_t charsetOf(const QLocale& locale) {
  switch (scriptNeeded(locale)) {
  case CjkScript::TraditionalChinese:
    return 136;
  case CjkScript::SimplifiedChinese:
    return 134;
  case CjkScript::Japanese:
    return 128;
  case CjkScript::Korean:
    return 129;
  case CjkScript::None:
    break;
  }
  switch (locale.language()) {
  case QLocale::Greek:
    return 161;
  case QLocale::Turkish:
  case QLocale::Azerbaijani:
    return 162;
  case QLocale::Vietnamese:
    return 163;
  case QLocale::Hebrew:
    return 177;
  case QLocale::Arabic:
  case QLocale::Persian:
  case QLocale::Urdu:
    return 178;
  case QLocale::Lithuanian:
  case QLocale::Latvian:
  case QLocale::Estonian:
    return 186;
  case QLocale::Russian:
  case QLocale::Ukrainian:
  case QLocale::Belarusian:
  case QLocale::Bulgarian:
  case QLocale::Macedonian:
  case QLocale::Kazakh:
    return 204;
  case QLocale::Serbian:
    return locale.script() == QLocale::LatinScript ? 238 : 204;
  case QLocale::Thai:
    return 222;
  case QLocale::Polish:
  case QLocale::Czech:
  case QLocale::Slovak:
  case QLocale::Hungarian:
  case QLocale::Slovenian:
  case QLocale::Croatian:
  case QLocale::Romanian:
  case QLocale::Albanian:
  case QLocale::Bosnian:
    return 238;
  default:
    return 0;
  }
}

std::string
chooseFamily(const std::string& desktop, const std::string& sample,
             const std::vector<std::string>& candidates,
             const std::function<bool(const std::string&, const std::string&)>& hasCharacters) {
  if (sample.empty() || hasCharacters(desktop, sample))
    return desktop;
  for (const std::string& family : candidates)
    if (hasCharacters(family, sample))
      return family;
  return desktop;
}

namespace {

bool familyHas(const std::string& family, const std::string& sample) {
  QFont font(QString::fromStdString(family));
  font.setStyleStrategy(QFont::NoFontMerging);
  QFontMetrics metrics(font);
  for (char32_t c : QString::fromStdString(sample).toUcs4())
    if (!metrics.inFontUcs4(c))
      return false;
  return true;
}

QFontDatabase::WritingSystem writingSystemOf(CjkScript script) {
  switch (script) {
  case CjkScript::TraditionalChinese:
    return QFontDatabase::TraditionalChinese;
  case CjkScript::SimplifiedChinese:
    return QFontDatabase::SimplifiedChinese;
  case CjkScript::Japanese:
    return QFontDatabase::Japanese;
  case CjkScript::Korean:
    return QFontDatabase::Korean;
  case CjkScript::None:
    break;
  }
  return QFontDatabase::Any;
}

}  // namespace

InterfaceFont SelectInterfaceFont(const QLocale& locale) {
  const QFont desktop = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  InterfaceFont result;
  result.Size = desktop.pointSize() > 0 ? desktop.pointSize() : 9;
  result.Charset = charsetOf(locale);
  const CjkScript script = scriptNeeded(locale);
  std::vector<std::string> candidates;
  if (script != CjkScript::None)
    for (const QString& family : QFontDatabase::families(writingSystemOf(script)))
      candidates.push_back(family.toStdString());
  result.Name =
      chooseFamily(desktop.family().toStdString(), sampleCharacters(script), candidates, familyHas);
  return result;
}

InterfaceFont SelectInterfaceFont() { return SelectInterfaceFont(QLocale::system()); }

}  // namespace tvx
