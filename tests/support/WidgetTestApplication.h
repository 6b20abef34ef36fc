// Widget tests need exactly one QApplication in the test program; the first test that needs one
// makes it (on the offscreen platform unless one is chosen) and it stays until the program ends.
#pragma once

#include <QApplication>

namespace tvx::test {

inline QApplication& widgetTestApplication() {
  if (auto* running = qobject_cast<QApplication*>(QCoreApplication::instance()))
    return *running;
  static int argc = 1;
  static char name[] = "tvx_test";
  static char* argv[] = {name, nullptr};
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  static QApplication* application = new QApplication(argc, argv);
  return *application;
}

}  // namespace tvx::test
