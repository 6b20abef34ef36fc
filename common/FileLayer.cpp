#include "common/FileLayer.h"

#include "common/UserDialogs.h"
#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace tvx {

FileLayer::FileLayer(SystemServices& services, UserPrompts* prompts)
    : services_(services), prompts_(prompts) {}

FileLayer::~FileLayer() {
  for (auto& [number, f] : files_)
    std::fclose(f.file);
}

int16_t FileLayer::freeNumber() const {
  int16_t number = 1;
  for (const auto& entry : files_) {
    if (entry.first != number)
      break;
    ++number;
  }
  return number <= MaxHandle ? number : 0;
}

FileLayer::OpenFile* FileLayer::find(int16_t handle) {
  auto it = files_.find(handle);
  return it == files_.end() ? nullptr : &it->second;
}

int FileLayer::plainFileError(const std::string& name) {
  std::error_code error;
  const std::filesystem::file_type type = std::filesystem::status(name, error).type();
  switch (type) {
  case std::filesystem::file_type::regular:
    return 0;
  case std::filesystem::file_type::directory:
    return EISDIR;
  case std::filesystem::file_type::not_found:
    return ENOENT;
  case std::filesystem::file_type::none:
    return error ? error.value() : ENOENT;
  default:
    return NotPlainFile;
  }
}

bool FileLayer::refuseUnlessPlainFile(const std::string& name) {
  const int error = plainFileError(name);
  if (error != EISDIR && error != NotPlainFile)
    return false;
  ReportReadError(name, error);
  return true;
}

std::string FileLayer::errorText(int error) const {
  switch (error) {
  case EISDIR:
    return services_.LocalMessage("Is a folder, not a file", "900120");
  case ENAMETOOLONG:
    return services_.LocalMessage("The name is too long", "900121");
  case NotPlainFile:
    return services_.LocalMessage("Is not a plain file", "900122");
  case 0:
    return std::generic_category().message(EIO);
  default:
    return std::generic_category().message(error);
  }
}

std::string FileLayer::readErrorLine(const std::string& name, int error) const {
  return services_.LocalMessage("Can't read file: ", "62451") + name + " (" + errorText(error) +
         ")";
}

void FileLayer::ReportReadError(const std::string& name, int error) {
  if (prompts_)
    ShowMessage(*prompts_, services_.LocalMessage("Can't read file: ", "62451") + name,
                msgbox::Exclamation, errorText(error));
}

void FileLayer::ReportWriteError(const std::string& name, int error) {
  if (prompts_)
    ShowMessage(*prompts_, services_.LocalMessage("Can't create/write to file: ", "62452") + name,
                msgbox::Exclamation, errorText(error));
}

void FileLayer::open(int32_t& status, int16_t& handle, const std::string& name, Mode mode,
                     const char* fopenMode, bool readError) {
  status = 0;
  handle = 0;
  int error = 0;
  int16_t number = freeNumber();
  std::FILE* f = nullptr;
  if (number == 0)
    error = EMFILE;
  else {
    errno = 0;
    f = std::fopen(name.c_str(), fopenMode);
    error = errno;
  }
  if (!f) {
    readError ? ReportReadError(name, error) : ReportWriteError(name, error);
    status = 1;
    return;
  }
  files_[number] = OpenFile{f, name, mode};
  handle = number;
}

void FileLayer::OpenForInput(int32_t& status, int16_t& handle, const std::string& name) {
  open(status, handle, name, Mode::Input, "rb", true);
}

void FileLayer::OpenForBinary(int32_t& status, int16_t& handle, const std::string& name) {
  open(status, handle, name, Mode::Binary, "rb", true);
}

void FileLayer::OpenForOutput(int32_t& status, int16_t& handle, const std::string& name) {
  open(status, handle, name, Mode::Output, "wb", false);
}

void FileLayer::ReadTextLine(int32_t& status, int16_t handle, std::string& line) {
  status = 0;
  line.clear();
  OpenFile* f = find(handle);
  if (!f || f->mode == Mode::Output) {
    ReportReadError(f ? f->name : std::string(), EBADF);
    status = 1;
    return;
  }
  int c = std::getc(f->file);
  if (c == EOF) {
    int error = std::ferror(f->file) ? errno : 0;
    ReportReadError(f->name, error ? error : ENODATA);
    status = 1;
    return;
  }
  while (c != EOF && c != '\n' && c != '\r') {
    line += static_cast<char>(c);
    c = std::getc(f->file);
  }
  if (c == '\r') {
    int next = std::getc(f->file);
    if (next != '\n' && next != EOF)
      std::ungetc(next, f->file);
  }
}

void FileLayer::ReadCharacters(int32_t& status, int16_t handle, std::string& text, int32_t count) {
  status = 0;
  OpenFile* f = find(handle);
  if (!f || f->mode == Mode::Output) {
    ReportReadError(f ? f->name : std::string(), EBADF);
    status = 1;
    return;
  }
  if (count <= 0)
    count = static_cast<int32_t>(text.size());
  if (count == 0)
    return;
  std::string buffer(size_t(count), '\0');
  size_t got = std::fread(buffer.data(), 1, buffer.size(), f->file);
  if (got != buffer.size()) {
    int error = std::ferror(f->file) ? errno : ENODATA;
    ReportReadError(f->name, error);
    status = 1;
    return;
  }
  text = std::move(buffer);
}

bool FileLayer::EndOfFile(int16_t handle) {
  OpenFile* f = find(handle);
  if (!f)
    return true;
  int c = std::getc(f->file);
  if (c == EOF)
    return true;
  std::ungetc(c, f->file);
  return false;
}

void FileLayer::WriteCharacters(int32_t& status, int16_t handle, const std::string& text) {
  status = 0;
  OpenFile* f = find(handle);
  if (!f || f->mode == Mode::Input || f->mode == Mode::Binary) {
    ReportWriteError(f ? f->name : std::string(), EBADF);
    status = 1;
    return;
  }
  errno = 0;
  if (std::fwrite(text.data(), 1, text.size(), f->file) != text.size()) {
    ReportWriteError(f->name, errno);
    status = 1;
  }
}

void FileLayer::WriteTextLine(int32_t& status, int16_t handle, const std::string& text) {
  WriteCharacters(status, handle, text + "\r\n");
}

void FileLayer::CloseFile(bool deleteFile, int16_t handle, const std::string& name) {
  auto it = files_.find(handle);
  if (it != files_.end()) {
    std::fclose(it->second.file);
    files_.erase(it);
  }
  if (deleteFile && !name.empty())
    std::remove(name.c_str());
}

}  // namespace tvx
