// The drawing format's part of the import road: stage one loads the file's records (and takes the
// drawing's own unit as the unit's start value), stage two draws them into the layer and says
// what the range check left out.
#pragma once

#include "import/core/FileReader.h"
#include "import/readers/dxf/DxfFormat.h"
#include "import/readers/dxf/DxfInterpreter.h"

#include <functional>
#include <string>

namespace tvx {

class FileLayer;
class Store;
class StatusReporter;
class SystemServices;

class DxfFileReader : public FileReader {
public:
  DxfFileReader(FileLayer& files, const SystemServices& services, Store& store,
                const StatusReporter& reporter, DxfFormat& format)
      : files_(files), services_(services), store_(store), reporter_(reporter), format_(format) {}

  // A binary drawing is refused with status 415; an unreadable one with the file layer's message.
  ScanResult scan(ImportJob& job) override;
  void importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                  LayerFileRecord& file) override;

  std::function<void(const std::string&)> editMsgLine;
  // A length of the out-of-range message in the display unit, with the unit's word behind the
  // second; millimetres until the viewer says otherwise.
  std::function<std::string(double storeLength)> formatLength;
  std::function<std::string()> unitWord;

  DxfReport lastReport;

private:
  FileLayer& files_;
  const SystemServices& services_;
  Store& store_;
  const StatusReporter& reporter_;
  DxfFormat& format_;
};

}  // namespace tvx
