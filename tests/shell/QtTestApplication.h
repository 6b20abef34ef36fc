// Widget tests need exactly one QApplication in the test program; it is made on first use and
// kept until the program ends. Tests in this folder that create widgets call this first.
#pragma once

#include <QApplication>

namespace tvx::test {

inline QApplication& qtTestApplication() {
  if (auto* existing = qobject_cast<QApplication*>(QCoreApplication::instance()))
    return *existing;
  static int argc = 1;
  static char name[] = "test_shell";
  static char* argv[] = {name, nullptr};
  static QApplication* application = new QApplication(argc, argv);
  return *application;
}

}  // namespace tvx::test
