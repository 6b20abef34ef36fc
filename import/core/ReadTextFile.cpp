#include "import/core/ReadTextFile.h"

#include "common/FileLayer.h"
#include "platform/SystemServices.h"

#include <fstream>

namespace tvx {

bool readTextFileLines(FileLayer& files, const SystemServices& services,
                       const std::string& fileName,
                       const std::function<void(const std::string&)>& editMsgLine,
                       const std::function<void(const std::string&)>& onLine) {
  if (editMsgLine)
    editMsgLine(fileName + " " + services.LocalMessage("Processing", "62441"));
  if (files.refuseUnlessPlainFile(fileName))
    return false;
  int32_t status = 0;
  int16_t handle = 0;
  files.OpenForInput(status, handle, fileName);
  if (status != 0)
    return false;
  std::string line;
  while (!files.EndOfFile(handle)) {
    files.ReadTextLine(status, handle, line);
    if (status != 0) {
      files.CloseFile(false, handle, fileName);
      return false;
    }
    onLine(line);
  }
  files.CloseFile(false, handle, fileName);
  return true;
}

bool lastLineIsOpen(const std::string& fileName) {
  std::ifstream in(fileName, std::ios::binary | std::ios::ate);
  if (!in || in.tellg() <= 0)
    return false;
  in.seekg(-1, std::ios::end);
  const int last = in.get();
  return last != '\n' && last != '\r' && last != std::char_traits<char>::eof();
}

}  // namespace tvx
