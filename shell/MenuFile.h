// The viewer's functions, their keys and the keys' options, as the menu file describes them.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tvx {

class SystemServices;

// The menu file of a language folder.
inline constexpr const char* MenuFileName = "GBRVIEWER.MEN";

inline constexpr int FunctionCount = 12;  // functions 0 to 11
inline constexpr int KeyCount = 11;       // keys 0 to 10 of a function (tools "3000" to "3010")
inline constexpr int OptionCount = 11;    // option rows 0 to 10 of a key (tools "4000" to "4010")

struct OptionRecord {
  int32_t Group = 0;
  int32_t Shown = 0;
  int32_t Command = 0;
  int32_t Checked = 0;
  std::string Caption;
  std::string Description;

  bool operator==(const OptionRecord&) const = default;
};

struct KeyRecord {
  int32_t Value1 = 0;  // kept, not interpreted by the viewer
  int32_t Shown = 0;
  int32_t Command = 0;
  int32_t Checked = 0;
  int32_t FirstOptionPicture = 0;
  int32_t Value2 = 0;  // kept, not interpreted by the viewer
  std::array<OptionRecord, OptionCount> Options{};
  int32_t Global = 0;
  std::string Shortcut = "  ";  // always two characters; two blanks when the key has none
  std::string Caption;
  std::string Description;

  bool operator==(const KeyRecord&) const = default;
};

struct FunctionRecord {
  int32_t FirstPicture = 0;
  int32_t CurrentKey = 0;
  std::array<KeyRecord, KeyCount> Keys{};
  std::string Name;
  std::string Prompt;

  bool operator==(const FunctionRecord&) const = default;
};

using FunctionTable = std::array<FunctionRecord, FunctionCount>;

// The menu file in languagePath, its name compared case-blind; the plain joined path when the
// folder holds none (so that the failure to open it names the expected file).
std::string menuFilePath(const std::string& languagePath);

// Reads the menu file into table, which is emptied first. Each line is a comma list (quoted
// fields allowed) whose first field is the record's word: FSI, FSIKEY, OSTKEY or ENDMENU, which
// ends the reading. Other words and empty lines are passed over; a line with fewer fields than a
// record has sets the fields it has. A function, key or option number outside the table is an
// error of the file: the line is passed over and one message lists the faulty lines when the
// reading ends. False only when the file cannot be opened or read (the file layer reports it).
bool ReadMenuFile(FunctionTable& table, const std::string& fileName, SystemServices& services);

}  // namespace tvx
