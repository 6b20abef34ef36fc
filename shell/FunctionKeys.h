// The functions' keys and the current key's options as the tool bands, the function keys and
// the "*" shortcuts work them, without the bands: which key of the current function is current,
// which option tools are checked, and the commands they run. The bands only show this state.
#pragma once

#include "shell/MenuFile.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace tvx {

class SystemServices;

// Every hook may be left empty.
struct FunctionKeyHooks {
  std::function<int16_t()> currentFunction;
  std::function<bool()> toolRunning;
  std::function<void()> repeatPointerMove;
  std::function<void()> focusView;
  std::function<void(const std::string&)> editMsgLine;
  // The function's row of the function menu is enabled; choosing it (M_FSI_Click).
  std::function<bool(int16_t function)> functionEnabled;
  std::function<void(int16_t function)> selectFunction;
  // A modal operation is in progress: commands wait.
  std::function<bool()> modalBusy;
  // The Edit, function and File menus and the layer tools, around a command.
  std::function<void(bool enabled)> enableCommandGroups;
  // The element commands of function 1.
  std::function<void(int32_t key, int32_t option)> functionOneCommand;
  std::function<void()> refreshBands;
};

class FunctionKeys {
public:
  FunctionKeys(FunctionTable& table, SystemServices& services);

  FunctionKeyHooks hooks;
  // The caption of the current function's menu row without its "&".
  std::string FunctionTitle;

  int16_t currentFunction() const;
  int32_t CurrentKey() const;
  // The current key's option tools: checked and enabled, rows 0 to 10.
  bool optionChecked(int32_t option) const;
  bool optionEnabled(int32_t option) const;
  void setOptionEnabled(int32_t option, bool enabled);
  int32_t optionCommand(int32_t option) const;
  // The row of the nth option tool that shows (from 0); row 10 never shows. -1 when none.
  int32_t visibleOptionRow(int32_t n) const;

  // The option tools from the current key's Checked fields, as the band is rebuilt.
  void rebuildOptions();
  void SelectKey(int32_t key, bool redraw);
  // The key becomes current and its options are rebuilt, without a word on the message line: as
  // the band is set again when the layer changes. False for a key that does not exist.
  bool reselectKey(int32_t key);
  // A key's tool pressed: its command when it has one, else the key selected.
  void keyToolClicked(int32_t key);
  void SetOptionCheck(int32_t option);
  void SetOption(int32_t option, bool check);
  void OptionChanged(int32_t option);
  void RunFunctionCommand(int32_t key, int32_t option, bool fromKey);
  // Two letters after "*": the walk over the functions' keys.
  void lookupShortcut(const std::string& letters);

private:
  KeyRecord* currentKeyRecord();
  const KeyRecord* currentKeyRecord() const;
  bool validOption(int32_t option) const { return option >= 0 && option < OptionCount; }

  FunctionTable& table_;
  SystemServices& services_;
  std::array<bool, OptionCount> optionChecked_{};
  std::array<bool, OptionCount> optionEnabled_{};
};

}  // namespace tvx
