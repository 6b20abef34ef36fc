// Reading a reader's source file line by line through the file layer, which reports a failure.
#pragma once

#include <functional>
#include <string>

namespace tvx {

class FileLayer;
class SystemServices;

// Tells editMsgLine the file's name and "Processing", then hands every line (without its ending)
// to onLine. Only a plain file is read: a folder reads as empty and a pipe may never end, so both
// are refused with the file layer's message. False when the file cannot be opened or read.
bool readTextFileLines(FileLayer& files, const SystemServices& services,
                       const std::string& fileName,
                       const std::function<void(const std::string&)>& editMsgLine,
                       const std::function<void(const std::string&)>& onLine);

// Whether the file's last line has no line end: the file was cut inside its last line. False for
// an empty file and for one that cannot be read.
bool lastLineIsOpen(const std::string& fileName);

}  // namespace tvx
