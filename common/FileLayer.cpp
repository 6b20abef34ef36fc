#include "common/FileLayer.h"

#include "platform/SystemServices.h"
#include "platform/UserPrompts.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace tvx {

namespace {

std::string errorText(int error) {
  if (error == 0)
    error = EIO;
  return std::generic_category().message(error);
}

// Reads are done as if the stream were bytes: a C stream needs a seek between a write and a read.
void settle(std::FILE* f) { std::fseek(f, 0, SEEK_CUR); }

}  // namespace

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

void FileLayer::ReportReadError(const std::string& name, int error) {
  if (prompts_)
    prompts_->messageBox(services_.LocalMessage("Can't read file: ", "62451") + name,
                         msgbox::Exclamation, errorText(error));
}

void FileLayer::ReportWriteError(const std::string& name, int error) {
  if (prompts_)
    prompts_->messageBox(services_.LocalMessage("Can't create/write to file: ", "62452") + name,
                         msgbox::Exclamation, errorText(error));
}

void FileLayer::open(int32_t& status, int16_t& handle, const std::string& name, Mode mode,
                     int32_t recordLength, const char* fopenMode, bool readError) {
  status = 0;
  handle = 0;
  int error = 0;
  int16_t number = freeNumber();
  std::FILE* f = nullptr;
  if (number == 0)
    error = EMFILE;
  else if (mode == Mode::Random && recordLength <= 0)
    error = EINVAL;
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
  files_[number] = OpenFile{f, name, mode, recordLength, false};
  handle = number;
}

void FileLayer::OpenForInput(int32_t& status, int16_t& handle, const std::string& name) {
  open(status, handle, name, Mode::Input, 0, "rb", true);
}

void FileLayer::OpenForBinary(int32_t& status, int16_t& handle, const std::string& name) {
  open(status, handle, name, Mode::Binary, 0, "rb", true);
}

void FileLayer::OpenForRandom(int32_t& status, int16_t& handle, const std::string& name,
                              int32_t recordLength) {
  open(status, handle, name, Mode::Random, recordLength, "r+b", false);
}

void FileLayer::OpenForOutput(int32_t& status, int16_t& handle, const std::string& name) {
  open(status, handle, name, Mode::Output, 0, "wb", false);
}

void FileLayer::CreateForRandom(int32_t& status, int16_t& handle, const std::string& name,
                                int32_t recordLength) {
  OpenForOutput(status, handle, name);
  if (status != 0)
    return;
  CloseFile(false, handle, name);
  OpenForRandom(status, handle, name, recordLength);
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
  if (f->lastWasWrite) {
    settle(f->file);
    f->lastWasWrite = false;
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
  if (f->lastWasWrite) {
    settle(f->file);
    f->lastWasWrite = false;
  }
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
  if (f->lastWasWrite) {
    settle(f->file);
    f->lastWasWrite = false;
  }
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

void FileLayer::GetRecord(int32_t& status, int16_t handle, int32_t recordNumber, void* data) {
  status = 0;
  OpenFile* f = find(handle);
  if (!f || f->mode != Mode::Random || recordNumber < 1) {
    ReportReadError(f ? f->name : std::string(), EINVAL);
    status = 1;
    return;
  }
  const long offset = long(recordNumber - 1) * f->recordLength;
  if (std::fseek(f->file, offset, SEEK_SET) != 0 ||
      std::fread(data, 1, size_t(f->recordLength), f->file) != size_t(f->recordLength)) {
    ReportReadError(f->name, std::ferror(f->file) ? errno : ENODATA);
    status = 1;
  }
  f->lastWasWrite = false;
}

void FileLayer::PutRecord(int32_t& status, int16_t handle, int32_t recordNumber, const void* data) {
  status = 0;
  OpenFile* f = find(handle);
  if (!f || f->mode != Mode::Random || recordNumber < 1) {
    ReportWriteError(f ? f->name : std::string(), EINVAL);
    status = 1;
    return;
  }
  const long offset = long(recordNumber - 1) * f->recordLength;
  errno = 0;
  if (std::fseek(f->file, offset, SEEK_SET) != 0 ||
      std::fwrite(data, 1, size_t(f->recordLength), f->file) != size_t(f->recordLength)) {
    ReportWriteError(f->name, errno);
    status = 1;
  }
  f->lastWasWrite = true;
}

int32_t FileLayer::RecordCount(int16_t handle) {
  OpenFile* f = find(handle);
  if (!f || f->mode != Mode::Random)
    return 0;
  std::fflush(f->file);
  long here = std::ftell(f->file);
  std::fseek(f->file, 0, SEEK_END);
  long size = std::ftell(f->file);
  std::fseek(f->file, here, SEEK_SET);
  f->lastWasWrite = false;
  return size < 0 ? 0 : static_cast<int32_t>(size / f->recordLength);
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
