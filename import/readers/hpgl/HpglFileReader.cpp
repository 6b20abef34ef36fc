#include "import/readers/hpgl/HpglFileReader.h"

#include "common/TextHelpers.h"
#include "import/core/ReadTextFile.h"
#include "import/readers/hpgl/HpglInterpreter.h"

namespace tvx {

bool ReadHpglText(FileLayer& files, const SystemServices& services, const std::string& fileName,
                  std::string& text, const std::function<void(const std::string&)>& editMsgLine) {
  text.clear();
  const bool read =
      readTextFileLines(files, services, fileName, editMsgLine,
                        [&text](const std::string& line) { text += TrimBlanks(line); });
  if (!read)
    text.clear();
  return read;
}

ScanResult HpglFileReader::scan(ImportJob& job) {
  return ReadHpglText(files_, services_, job.SourcePath, job.HpglText, editMsgLine)
             ? ScanResult::Scanned
             : ScanResult::Failed;
}

void HpglFileReader::importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                                LayerFileRecord& file) {
  ImportHpgl(status, job.HpglText, store_, layer, file);
}

}  // namespace tvx
