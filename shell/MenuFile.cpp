#include "shell/MenuFile.h"

#include "common/FileLayer.h"
#include "common/ParseList.h"
#include "platform/DataFiles.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <cmath>
#include <limits>
#include <vector>

namespace tvx {

namespace {

// A field's number as a whole number, half to even; clamped to the 32-bit range.
int32_t wholeField(double v) {
  if (std::isnan(v))
    return 0;
  double r = std::nearbyint(v);
  if (r <= double(std::numeric_limits<int32_t>::min()))
    return std::numeric_limits<int32_t>::min();
  if (r >= double(std::numeric_limits<int32_t>::max()))
    return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(r);
}

std::string upperTrimmed(const std::string& s) {
  size_t b = s.find_first_not_of(" \t");
  size_t e = s.find_last_not_of(" \t");
  std::string out = b == std::string::npos ? std::string() : s.substr(b, e - b + 1);
  for (char& c : out)
    if (c >= 'a' && c <= 'z')
      c = char(c - 'a' + 'A');
  return out;
}

// The two characters of a shortcut: cut or padded with blanks to a width of two.
std::string fixedTwo(const std::string& s) {
  std::string out = s.substr(0, 2);
  out.resize(2, ' ');
  return out;
}

class MenuReader {
public:
  MenuReader(FunctionTable& table) : table_(table) {}

  // Returns false at ENDMENU.
  bool line(const std::string& text, int lineNumber) {
    if (text.empty())
      return true;
    ParsedList f = ParseList(text);
    const int n = f.count();
    const std::string word = upperTrimmed(f.token(1));
    if (word == "ENDMENU")
      return false;
    if (word == "FSI")
      fsi(f, n, lineNumber);
    else if (word == "FSIKEY")
      fsiKey(f, n, lineNumber);
    else if (word == "OSTKEY")
      ostKey(f, n, lineNumber);
    return true;
  }

  const std::vector<std::string>& faults() const { return faults_; }

private:
  bool index(const ParsedList& f, int field, int limit, const char* what, int lineNumber,
             int& out) {
    int32_t v = wholeField(f.value(field));
    if (v < 0 || v >= limit) {
      faults_.push_back(std::to_string(lineNumber) + ": " + what + " " + f.token(field));
      return false;
    }
    out = v;
    return true;
  }

  void fsi(const ParsedList& f, int n, int ln) {
    int fn;
    if (n < 2 || !index(f, 2, FunctionCount, "function", ln, fn))
      return;
    FunctionRecord& r = table_[size_t(fn)];
    if (n >= 3)
      r.FirstPicture = wholeField(f.value(3));
    if (n >= 4)
      r.CurrentKey = wholeField(f.value(4));
    if (n >= 5)
      r.Name = f.token(5);
    if (n >= 6)
      r.Prompt = f.token(6);
  }

  void fsiKey(const ParsedList& f, int n, int ln) {
    int fn, key;
    if (n < 3 || !index(f, 2, FunctionCount, "function", ln, fn) ||
        !index(f, 3, KeyCount, "key", ln, key))
      return;
    KeyRecord& k = table_[size_t(fn)].Keys[size_t(key)];
    if (n >= 4)
      k.Value1 = wholeField(f.value(4));
    if (n >= 5)
      k.Shown = wholeField(f.value(5));
    if (n >= 6)
      k.Checked = wholeField(f.value(6));
    if (n >= 7)
      k.FirstOptionPicture = wholeField(f.value(7));
    if (n >= 8)
      k.Value2 = wholeField(f.value(8));
    if (n >= 9)
      k.Caption = f.token(9);
    if (n >= 10)
      k.Description = f.token(10);
    if (n >= 12) {
      k.Shortcut = fixedTwo(f.token(11));
      k.Global = wholeField(f.value(12));
    }
    if (n >= 13)
      k.Command = wholeField(f.value(13));
  }

  void ostKey(const ParsedList& f, int n, int ln) {
    int fn, key, option;
    if (n < 4 || !index(f, 2, FunctionCount, "function", ln, fn) ||
        !index(f, 3, KeyCount, "key", ln, key) || !index(f, 4, OptionCount, "option", ln, option))
      return;
    OptionRecord& o = table_[size_t(fn)].Keys[size_t(key)].Options[size_t(option)];
    if (n >= 5)
      o.Group = wholeField(f.value(5));
    if (n >= 6)
      o.Shown = wholeField(f.value(6));
    if (n >= 7)
      o.Checked = wholeField(f.value(7));
    if (n >= 8)
      o.Caption = f.token(8);
    if (n >= 9)
      o.Description = f.token(9);
    if (n >= 10)
      o.Command = wholeField(f.value(10));
  }

  FunctionTable& table_;
  std::vector<std::string> faults_;
};

}  // namespace

std::string menuFilePath(const std::string& languagePath) {
  std::string found = findFileCaseBlind(languagePath, MenuFileName);
  if (!found.empty())
    return found;
  std::string folder = languagePath;
  return SystemServices::EnsureBackslash(folder) + MenuFileName;
}

bool ReadMenuFile(FunctionTable& table, const std::string& fileName, SystemServices& services) {
  FileLayer files(services, services.prompts());
  int32_t status = 0;
  int16_t handle = 0;
  files.OpenForInput(status, handle, fileName);
  if (status != 0)
    return false;

  table = FunctionTable{};
  MenuReader reader(table);
  bool ok = true;
  for (int lineNumber = 1; !files.EndOfFile(handle); ++lineNumber) {
    std::string text;
    files.ReadTextLine(status, handle, text);
    if (status != 0) {
      ok = false;
      break;
    }
    if (lineNumber == 1 && text.rfind("\xEF\xBB\xBF", 0) == 0)
      text.erase(0, 3);
    if (!reader.line(text, lineNumber))
      break;
  }
  files.CloseFile(false, handle, fileName);

  if (!reader.faults().empty() && services.prompts()) {
    std::string prompt = services.LocalMessage("Error in menu file: ", "900101") + fileName;
    const size_t shownFaults = 10;
    for (size_t i = 0; i < reader.faults().size() && i < shownFaults; ++i)
      prompt += "\n" + services.LocalMessage("Line ", "900102") + reader.faults()[i];
    if (reader.faults().size() > shownFaults)
      prompt += "\n...";
    services.prompts()->messageBox(prompt, msgbox::Exclamation, MenuFileName);
  }
  return ok;
}

}  // namespace tvx
