// All of the system's file access: numbered files, text lines and characters,
// with one message for a failed read and one for a failed write.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

namespace tvx {

class SystemServices;
class UserPrompts;

// A handle is a small file number, the lowest one free, from 1 up. Every operation but CloseFile
// takes the status word first: 0 success; on failure the message is shown here, once, and the
// word holds 1.
class FileLayer {
public:
  // Messages are translated by services and shown through prompts (none shown without prompts).
  FileLayer(SystemServices& services, UserPrompts* prompts);
  ~FileLayer();
  FileLayer(const FileLayer&) = delete;
  FileLayer& operator=(const FileLayer&) = delete;

  static constexpr int16_t MaxHandle = 511;

  void OpenForInput(int32_t& status, int16_t& handle, const std::string& name);
  void OpenForBinary(int32_t& status, int16_t& handle, const std::string& name);
  void OpenForOutput(int32_t& status, int16_t& handle, const std::string& name);

  // The next line without its ending (CR LF, LF or a lone CR). Reading past the end fails.
  void ReadTextLine(int32_t& status, int16_t handle, std::string& line);
  // Reads count bytes into text; a count of 0 reads as many bytes as text holds.
  void ReadCharacters(int32_t& status, int16_t handle, std::string& text, int32_t count);
  // True when nothing more can be read from the file (also for a number that is not open).
  bool EndOfFile(int16_t handle);

  // Writes text and a line ending (CR LF) to a file opened for output.
  void WriteTextLine(int32_t& status, int16_t handle, const std::string& text);
  // Writes text as it stands to a file opened for output or binary access.
  void WriteCharacters(int32_t& status, int16_t handle, const std::string& text);

  // Closes the number and, with deleteFile, deletes the named file; errors are passed over.
  void CloseFile(bool deleteFile, int16_t handle, const std::string& name);

  // Stands for "not a plain file" (a device, a pipe, a socket) where an error number is taken.
  static constexpr int NotPlainFile = -1;
  // Why name cannot be read as a plain file, asked before it is opened: 0 for a plain file,
  // EISDIR for a folder, NotPlainFile for a device, a pipe or a socket, else the system's error
  // (ENOENT, ENAMETOOLONG, ...).
  static int plainFileError(const std::string& name);
  // A folder or a file that is not plain is refused before it is opened (reading a folder gives
  // nothing, reading a pipe may never end): its read message is shown, and true.
  bool refuseUnlessPlainFile(const std::string& name);

  // The reason of a failed read or write: the catalogue's text for a folder, a name too long and
  // a file that is not plain, the system's text for the rest.
  std::string errorText(int error) const;
  // Message 62451 with the name and the reason in brackets, on one line (a message line, a
  // command line tool's error).
  std::string readErrorLine(const std::string& name, int error) const;

  // Message 62451 / 62452 with the name, titled with errorText(error).
  void ReportReadError(const std::string& name, int error);
  void ReportWriteError(const std::string& name, int error);

  int openCount() const { return static_cast<int>(files_.size()); }

private:
  enum class Mode { Input, Binary, Output };
  struct OpenFile {
    std::FILE* file = nullptr;
    std::string name;
    Mode mode = Mode::Input;
  };

  void open(int32_t& status, int16_t& handle, const std::string& name, Mode mode,
            const char* fopenMode, bool readError);
  OpenFile* find(int16_t handle);
  int16_t freeNumber() const;

  SystemServices& services_;
  UserPrompts* prompts_;
  std::map<int16_t, OpenFile> files_;
};

}  // namespace tvx
