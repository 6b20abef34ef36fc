// The functions' keys and options as the keys work them: the "*" walk with every case of
// Global, the option tools the function keys count, groups of options, and commands.
#include "shell/FunctionKeys.h"

#include "platform/SystemServices.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace tvx {
namespace {

class FunctionKeysTest : public ::testing::Test {
public:
  void SetUp() override {
    // Function 1: key 2 "DE" local, key 3 "IN" global with a command, key 4 "AL" local.
    // Function 2: key 0 "DE" local, key 5 "XX" global.
    auto key = [this](int16_t f, int32_t k, const char* shortcut, int32_t global, int32_t command) {
      KeyRecord& r = table[size_t(f)].Keys[size_t(k)];
      r.Shortcut = shortcut;
      r.Global = global;
      r.Command = command;
      r.Shown = 1;
      r.Description = std::string("key ") + shortcut;
    };
    key(1, 2, "DE", 0, 0);
    key(1, 3, "IN", 1, 1);
    key(1, 4, "AL", 0, 0);
    key(2, 0, "DE", 0, 0);
    key(2, 5, "XX", 1, 0);
    table[1].CurrentKey = 4;
    keys.hooks.currentFunction = [this] { return current; };
    keys.hooks.functionEnabled = [this](int16_t f) { return f != 3 || thirdEnabled; };
    keys.hooks.selectFunction = [this](int16_t f) {
      current = f;
      events.push_back("function " + std::to_string(f));
    };
    keys.hooks.functionOneCommand = [this](int32_t k, int32_t option) {
      events.push_back("command " + std::to_string(k) + "," + std::to_string(option));
    };
    keys.hooks.toolRunning = [this] { return toolRunning; };
    keys.hooks.repeatPointerMove = [this] { events.push_back("move"); };
  }

  FunctionTable table{};
  SystemServices services;
  FunctionKeys keys{table, services};
  int16_t current = 1;
  bool thirdEnabled = false;
  bool toolRunning = false;
  std::vector<std::string> events;
};

TEST_F(FunctionKeysTest, ShortcutsFollowGlobalAndTheCurrentFunction) {
  struct Case {
    const char* name;
    int16_t current;
    const char* letters;
    int16_t function;  // the current function afterwards
    int32_t key;       // its current key afterwards
    std::vector<std::string> events;
  };
  const Case cases[] = {
      {"local key of the current function is selected", 1, "DE", 1, 2, {}},
      {"local key of another function is no match", 2, "AL", 2, 0, {}},
      {"global key of the current function runs its command",
       1,
       "IN",
       1,
       4,
       {"command 3,0", "move"}},
      {"global key of another function switches to it", 1, "XX", 2, 5, {"function 2"}},
      {"letters that match nothing change nothing", 1, "QQ", 1, 4, {}},
  };
  for (const Case& c : cases) {
    table[1].CurrentKey = 4;
    table[2].CurrentKey = 0;
    current = c.current;
    events.clear();
    keys.lookupShortcut(c.letters);
    EXPECT_EQ(current, c.function) << c.name;
    EXPECT_EQ(table[size_t(current)].CurrentKey, c.key) << c.name;
    EXPECT_EQ(events, c.events) << c.name;
  }
  // A global key of a disabled function is no match.
  table[3].Keys[1].Shortcut = "ZZ";
  table[3].Keys[1].Global = 1;
  current = 1;
  keys.lookupShortcut("ZZ");
  EXPECT_EQ(current, 1);
  thirdEnabled = true;
  keys.lookupShortcut("ZZ");
  EXPECT_EQ(current, 3);
  EXPECT_EQ(table[3].CurrentKey, 1);
  EXPECT_EQ(table[3].Keys[1].Checked, 1);
}

TEST_F(FunctionKeysTest, APressOfACommandKeyRunsItAndKeepsThePreviousKey) {
  // Key 3 runs a command: the checked key stays 4. Key 2 is selected: it takes the check.
  table[1].Keys[4].Checked = 1;
  keys.keyToolClicked(3);
  EXPECT_EQ(std::tuple(keys.CurrentKey(), table[1].Keys[4].Checked, table[1].Keys[3].Checked),
            std::tuple(4, 1, 0));
  EXPECT_EQ(events, (std::vector<std::string>{"command 3,0", "move"}));
  keys.keyToolClicked(2);
  EXPECT_EQ(std::tuple(keys.CurrentKey(), table[1].Keys[4].Checked, table[1].Keys[2].Checked),
            std::tuple(2, 0, 1));
}

TEST_F(FunctionKeysTest, OptionToolsGroupsAndCommands) {
  // Key 4 of function 1: rows 0, 2, 3 and 10 show; rows 2 and 3 form group 5; row 3 is a
  // command.
  KeyRecord& key = table[1].Keys[4];
  for (int32_t row : {0, 2, 3, 10})
    key.Options[size_t(row)].Shown = 1;
  key.Options[2].Group = key.Options[3].Group = 5;
  key.Options[0].Group = 1;
  key.Options[10].Group = 9;
  key.Options[3].Command = 7;
  keys.rebuildOptions();

  // The function keys count the visible tools; row 10 never shows.
  EXPECT_EQ((std::vector<int32_t>{keys.visibleOptionRow(0), keys.visibleOptionRow(1),
                                  keys.visibleOptionRow(2), keys.visibleOptionRow(3)}),
            (std::vector<int32_t>{0, 2, 3, -1}));

  // Checking one option of a group unchecks the others, in the tools and in the key.
  keys.SetOption(3, true);
  keys.SetOption(2, true);
  EXPECT_TRUE(keys.optionChecked(2));
  EXPECT_FALSE(keys.optionChecked(3));
  EXPECT_EQ(key.Options[2].Checked, 1);
  EXPECT_EQ(key.Options[3].Checked, 0);

  // Row 10 with a tool running: the move repeats (so the tool can end), then the row is clear.
  toolRunning = true;
  events.clear();
  keys.SetOption(10, true);
  EXPECT_EQ(events, std::vector<std::string>{"move"});
  EXPECT_FALSE(keys.optionChecked(10));

  // A command option runs with the current key and keeps it.
  toolRunning = false;
  events.clear();
  keys.RunFunctionCommand(keys.CurrentKey(), 3, true);
  EXPECT_EQ(events, (std::vector<std::string>{"command 4,3", "move"}));
  EXPECT_EQ(keys.CurrentKey(), 4);
}

}  // namespace
}  // namespace tvx
