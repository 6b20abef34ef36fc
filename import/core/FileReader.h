// The part of the import that one file format supplies: stage one, which reads and scans the
// chosen file without touching a layer, and stage two, which draws one file record of a layer into
// the layer's symbol. Each format implements it once; the import driver and the session hold them
// by reader code.
#pragma once

#include "import/core/ImportJob.h"
#include "store/LayerRecord.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tvx {

// How stage one ended.
enum class ScanResult {
  Scanned,      // the job holds what the scan found; the layer binding may follow
  Failed,       // the file could not be read or scanned; the reason has been reported
  NotReadable,  // the text is not of the reader's format (reported with status 93); the file is
                // shown as plain text instead
};

class FileReader {
public:
  virtual ~FileReader() = default;

  // Stage one for job.SourcePath with job.Kind. May change the kind (a drill file that scans as
  // the other format) and fills the job's text or intermediate file for stage two.
  virtual ScanResult scan(ImportJob& job) = 0;

  // Completes the file record that the layer binding has just made for this reader (the drill
  // file's tool table). Nothing by default.
  virtual void prepareBoundFile(ImportJob& /*job*/, LayerFileRecord& /*file*/) {}

  // Stage two: one file record of layer into the layer's symbol. status is 0 on success and 1
  // after a failure, which is reported where it is found.
  virtual void importFile(int32_t& status, const ImportJob& job, LayerRecord& layer,
                          LayerFileRecord& file) = 0;

  // What the last scan dropped or cut, each "line 12: ..." by the line of the file, in the order
  // of the file; said once, after the import, by whoever shows its outcome. None by default.
  virtual std::vector<std::string> notes() const { return {}; }
};

}  // namespace tvx
