// Tests that paint text or use fonts need one QGuiApplication in the test program; it is made on
// first use and kept until the program ends.
#pragma once

#include <QGuiApplication>

namespace tvx::test {

inline QGuiApplication& guiTestApplication() {
  if (auto* existing = qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    return *existing;
  static int argc = 1;
  static char name[] = "tvx_test";
  static char* argv[] = {name, nullptr};
  static QGuiApplication* application = new QGuiApplication(argc, argv);
  return *application;
}

}  // namespace tvx::test
