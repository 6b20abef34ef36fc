#include "shell/FunctionKeys.h"

#include "common/CallHook.h"
#include "platform/SystemServices.h"

namespace tvx {

FunctionKeys::FunctionKeys(FunctionTable& table, SystemServices& services)
    : table_(table), services_(services) {
  optionEnabled_.fill(true);
}

int16_t FunctionKeys::currentFunction() const {
  return hooks.currentFunction ? hooks.currentFunction() : 0;
}

int32_t FunctionKeys::CurrentKey() const {
  const int16_t function = currentFunction();
  return function >= 0 && function < FunctionCount ? table_[size_t(function)].CurrentKey : 0;
}

KeyRecord* FunctionKeys::currentKeyRecord() {
  const int16_t function = currentFunction();
  const int32_t key = CurrentKey();
  if (function < 0 || function >= FunctionCount || key < 0 || key >= KeyCount)
    return nullptr;
  return &table_[size_t(function)].Keys[size_t(key)];
}

const KeyRecord* FunctionKeys::currentKeyRecord() const {
  return const_cast<FunctionKeys*>(this)->currentKeyRecord();
}

bool FunctionKeys::optionChecked(int32_t option) const {
  return validOption(option) && optionChecked_[size_t(option)];
}

bool FunctionKeys::optionEnabled(int32_t option) const {
  return validOption(option) && optionEnabled_[size_t(option)];
}

void FunctionKeys::setOptionEnabled(int32_t option, bool enabled) {
  if (validOption(option))
    optionEnabled_[size_t(option)] = enabled;
}

int32_t FunctionKeys::optionCommand(int32_t option) const {
  const KeyRecord* key = currentKeyRecord();
  return key && validOption(option) ? key->Options[size_t(option)].Command : 0;
}

int32_t FunctionKeys::visibleOptionRow(int32_t n) const {
  const KeyRecord* key = currentKeyRecord();
  if (!key || n < 0)
    return -1;
  for (int32_t row = 0; row < OptionCount - 1; ++row)
    if (key->Options[size_t(row)].Shown != 0 && n-- == 0)
      return row;
  return -1;
}

void FunctionKeys::rebuildOptions() {
  const KeyRecord* key = currentKeyRecord();
  for (int32_t row = 0; row < OptionCount; ++row)
    optionChecked_[size_t(row)] = key && key->Options[size_t(row)].Checked != 0;
}

bool FunctionKeys::reselectKey(int32_t key) {
  const int16_t function = currentFunction();
  if (function < 0 || function >= FunctionCount || key < 0 || key >= KeyCount)
    return false;
  FunctionRecord& record = table_[size_t(function)];
  if (record.CurrentKey >= 0 && record.CurrentKey < KeyCount)
    record.Keys[size_t(record.CurrentKey)].Checked = 0;
  record.CurrentKey = key;
  record.Keys[size_t(key)].Checked = 1;
  rebuildOptions();
  return true;
}

void FunctionKeys::SelectKey(int32_t key, bool /*redraw*/) {
  if (!reselectKey(key))
    return;
  const KeyRecord& chosen = table_[size_t(currentFunction())].Keys[size_t(key)];
  callHook(hooks.editMsgLine, chosen.Description + " (" +
                                  services_.LocalMessage("Shortcut:", "62103") + " *" +
                                  chosen.Shortcut + ")");
  callHook(hooks.focusView);
}

void FunctionKeys::keyToolClicked(int32_t key) {
  const int16_t function = currentFunction();
  if (function < 0 || function >= FunctionCount || key < 0 || key >= KeyCount)
    return;
  if (table_[size_t(function)].Keys[size_t(key)].Command != 0)
    RunFunctionCommand(key, 0, false);
  else
    SelectKey(key, true);
}

void FunctionKeys::SetOptionCheck(int32_t option) {
  const KeyRecord* key = currentKeyRecord();
  if (!validOption(option))
    return;
  const bool on = !optionChecked_[size_t(option)];
  optionChecked_[size_t(option)] = on;
  if (on && key)
    for (int32_t row = option + 1; row < OptionCount; ++row)
      if (key->Options[size_t(row)].Group == key->Options[size_t(option)].Group)
        optionChecked_[size_t(row)] = false;
}

void FunctionKeys::SetOption(int32_t option, bool check) {
  if (!validOption(option))
    return;
  const bool before = optionChecked_[size_t(option)];
  optionChecked_[size_t(option)] = check;
  if (const KeyRecord* key = currentKeyRecord(); key && check)
    for (int32_t row = 0; row < OptionCount; ++row)
      if (row != option && key->Options[size_t(row)].Group == key->Options[size_t(option)].Group)
        optionChecked_[size_t(row)] = false;
  if (before != check)
    OptionChanged(option);
}

void FunctionKeys::OptionChanged(int32_t option) {
  if (!validOption(option))
    return;
  if (optionChecked_[size_t(option)] && hooks.toolRunning && hooks.toolRunning())
    callHook(hooks.repeatPointerMove);
  optionChecked_[OptionCount - 1] = false;
  if (KeyRecord* key = currentKeyRecord()) {
    const int32_t group = key->Options[size_t(option)].Group;
    for (OptionRecord& row : key->Options)
      if (row.Group == group)
        row.Checked = 0;
    key->Options[size_t(option)].Checked = optionChecked_[size_t(option)] ? 1 : 0;
  }
  callHook(hooks.focusView);
}

void FunctionKeys::RunFunctionCommand(int32_t key, int32_t option, bool /*fromKey*/) {
  if (hooks.modalBusy && hooks.modalBusy())
    return;
  callHook(hooks.enableCommandGroups, false);
  if (currentFunction() == 1)
    callHook(hooks.functionOneCommand, key, option);
  if (!(hooks.toolRunning && hooks.toolRunning()))
    callHook(hooks.enableCommandGroups, true);
  callHook(hooks.repeatPointerMove);
  callHook(hooks.refreshBands);
}

void FunctionKeys::lookupShortcut(const std::string& letters) {
  for (int16_t function = 1; function < FunctionCount; ++function) {
    for (int32_t k = 0; k < KeyCount; ++k) {
      KeyRecord& key = table_[size_t(function)].Keys[size_t(k)];
      if (key.Shortcut != letters)
        continue;
      const bool current = function == currentFunction();
      if (key.Global == 0) {
        if (!current)
          continue;
        keyToolClicked(k);
        break;  // on with the next function
      }
      if (current) {
        if (key.Command == 1)
          RunFunctionCommand(k, 0, false);
        else
          SelectKey(k, true);
        break;
      }
      if (!(hooks.functionEnabled && hooks.functionEnabled(function)))
        continue;
      FunctionRecord& record = table_[size_t(function)];
      for (KeyRecord& other : record.Keys)
        other.Checked = 0;
      record.CurrentKey = k;
      key.Checked = 1;
      callHook(hooks.selectFunction, function);
    }
  }
}

}  // namespace tvx
