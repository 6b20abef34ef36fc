// The plotter format's part of the import road: stage one reads the file's text, stage two runs
// the plotter commands into the layer.
#pragma once

#include "import/core/FileReader.h"

#include <functional>
#include <string>

namespace tvx {

class FileLayer;
class Store;
class SystemServices;

// Reads a plotter file: each line trimmed and appended with no separator (a number that ends one
// line and one that starts the next run together). The case stays: commands are read
// case-blind, and the digits of encoded polylines are letters of both cases. Tells editMsgLine the
// file's name and "Processing" first. False, with the file layer's message, when it cannot be read.
bool ReadHpglText(FileLayer& files, const SystemServices& services, const std::string& fileName,
                  std::string& text, const std::function<void(const std::string&)>& editMsgLine);

class HpglFileReader : public FileReader {
public:
  HpglFileReader(FileLayer& files, const SystemServices& services, Store& store)
      : files_(files), services_(services), store_(store) {}

  ScanResult scan(ImportJob& job) override;
  void importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                  LayerFileRecord& file) override;

  std::function<void(const std::string&)> editMsgLine;

private:
  FileLayer& files_;
  const SystemServices& services_;
  Store& store_;
};

}  // namespace tvx
