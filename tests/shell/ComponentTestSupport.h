// A component with its own kernel, services and scripted prompts, and a record of every command
// it sends to its host.
#pragma once

#include "support/WidgetTestApplication.h"

#include "kernel/Kernel.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"
#include "shell/ComponentContext.h"
#include "shell/GBRVIEWER_MAIN.h"
#include "shell/HostCommands.h"
#include "shell/clsTVNGBRVIEWER.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tvx::test {

using Sent = std::vector<std::pair<std::string, std::string>>;

class ComponentTest : public ::testing::Test {
protected:
  void SetUp() override {
    widgetTestApplication();
    component = makeComponent(sent);
  }
  void TearDown() override { component.reset(); }

  std::unique_ptr<clsTVNGBRVIEWER> makeComponent(Sent& record) {
    auto c = std::make_unique<clsTVNGBRVIEWER>(context);
    QObject::connect(c.get(), &clsTVNGBRVIEWER::NotifyServer,
                     [&record](const std::string& Aname, const std::string& sCommand) {
                       record.emplace_back(Aname, sCommand);
                     });
    return c;
  }

  // Loads the component in state mode and checks that it came up.
  void load(int16_t mode = 0) {
    ASSERT_EQ(component->Load(mode), -1);
    ASSERT_NE(window(), nullptr);
  }

  GBRVIEWER_MAIN* window() const { return clsTVNGBRVIEWER::mainWindow(); }

  std::string kernelString(const std::string& name) const {
    return SystemServices::StringFromPointer(kernel.strings.E_GetString(name));
  }

  Kernel kernel;
  ScriptedPrompts prompts;
  SystemServices services{&prompts};
  ComponentContext context{kernel, services, prompts};
  Sent sent;
  std::unique_ptr<clsTVNGBRVIEWER> component;
};

// A component whose settings file lies in a folder of the test's own.
class SettingsFileTest : public ComponentTest {
protected:
  void SetUp() override {
    ComponentTest::SetUp();
    ASSERT_TRUE(folder.isValid());
    ini = folder.filePath("tarvex.ini").toStdString();
    kernel.strings.E_SetString(IniFileString, ini);
  }

  QTemporaryDir folder;
  std::string ini;
};

inline const Sent& shutdownOnly() {
  static const Sent expected{{"TVNGBRVIEWER", "SHUTDOWN"}};
  return expected;
}

}  // namespace tvx::test
