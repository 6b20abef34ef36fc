#include "platform/IniFile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tvx {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string trim(const std::string& s) {
  size_t b = 0, e = s.size();
  while (b < e && isBlank(s[b]))
    ++b;
  while (e > b && isBlank(s[e - 1]))
    --e;
  return s.substr(b, e - b);
}

char lower(char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; }

bool sameName(const std::string& a, const std::string& b) {
  if (a.size() != b.size())
    return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (lower(a[i]) != lower(b[i]))
      return false;
  return true;
}

bool holdsLineBreak(const std::string& s) { return s.find_first_of("\r\n") != std::string::npos; }

}  // namespace

IniDocument::Line IniDocument::classify(std::string raw, const std::string& currentSection) {
  Line line;
  line.raw = std::move(raw);
  line.section = currentSection;
  const std::string t = trim(line.raw);
  if (t.empty() || t[0] == ';' || t[0] == '#')
    return line;
  if (t[0] == '[') {
    size_t close = t.find(']');
    line.kind = LineKind::Header;
    line.section = trim(t.substr(1, close == std::string::npos ? std::string::npos : close - 1));
    return line;
  }
  size_t eq = line.raw.find('=');
  if (eq == std::string::npos)
    return line;
  std::string key = trim(line.raw.substr(0, eq));
  if (key.empty())
    return line;
  line.kind = LineKind::Key;
  line.key = std::move(key);
  line.valueStart = eq + 1;
  return line;
}

void IniDocument::parse(const std::string& input) {
  lines_.clear();
  std::string_view text(input);
  bom_ = text.size() >= 3 && text.substr(0, 3) == "\xEF\xBB\xBF";
  if (bom_)
    text.remove_prefix(3);
  size_t firstLf = text.find('\n');
  crlf_ = firstLf != std::string_view::npos && firstLf > 0 && text[firstLf - 1] == '\r';
  finalNewline_ = text.empty() || text.back() == '\n';

  std::string section;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos)
      end = text.size();
    std::string raw(text.substr(pos, end - pos));
    Line::Ending ending = Line::Ending::File;
    if (end < text.size()) {
      ending = Line::Ending::Lf;
      if (!raw.empty() && raw.back() == '\r') {
        raw.pop_back();
        ending = Line::Ending::CrLf;
      }
    }
    Line line = classify(std::move(raw), section);
    line.ending = ending;
    if (line.kind == LineKind::Header)
      section = line.section;
    lines_.push_back(std::move(line));
    pos = end + 1;
  }
}

std::string IniDocument::text() const {
  std::string out;
  if (bom_)
    out += "\xEF\xBB\xBF";
  for (size_t i = 0; i < lines_.size(); ++i) {
    const Line& line = lines_[i];
    out += line.raw;
    if (i + 1 < lines_.size() || finalNewline_) {
      const bool crlf =
          line.ending == Line::Ending::File ? crlf_ : line.ending == Line::Ending::CrLf;
      out += crlf ? "\r\n" : "\n";
    }
  }
  return out;
}

long IniDocument::findKey(const std::string& section, const std::string& key) const {
  for (size_t i = 0; i < lines_.size(); ++i) {
    const Line& l = lines_[i];
    if (l.kind == LineKind::Key && sameName(l.section, section) && sameName(l.key, key))
      return long(i);
  }
  return -1;
}

std::optional<std::string> IniDocument::value(const std::string& section,
                                              const std::string& key) const {
  long i = findKey(section, key);
  if (i < 0)
    return std::nullopt;
  const Line& l = lines_[size_t(i)];
  std::string v = trim(l.raw.substr(l.valueStart));
  if (v.size() >= 2 && v.front() == '"' && v.back() == '"')
    v = v.substr(1, v.size() - 2);
  return v;
}

std::vector<std::string> IniDocument::keys(const std::string& section) const {
  std::vector<std::string> out;
  for (const Line& l : lines_) {
    if (l.kind != LineKind::Key || !sameName(l.section, section))
      continue;
    bool seen = false;
    for (const std::string& k : out)
      seen = seen || sameName(k, l.key);
    if (!seen)
      out.push_back(l.key);
  }
  return out;
}

std::string IniDocument::encodeValue(const std::string& value) {
  bool needsQuotes =
      !value.empty() && (isBlank(value.front()) || isBlank(value.back()) ||
                         (value.size() >= 2 && value.front() == '"' && value.back() == '"'));
  return needsQuotes ? "\"" + value + "\"" : value;
}

bool IniDocument::setValue(const std::string& section, const std::string& key,
                           const std::string& value) {
  const std::string name = trim(key);
  if (name.empty() || holdsLineBreak(value) || holdsLineBreak(key) || holdsLineBreak(section) ||
      key.find('=') != std::string::npos || name[0] == '[' || name[0] == ';' || name[0] == '#' ||
      section.find(']') != std::string::npos)
    return false;
  const std::string encoded = encodeValue(value);

  long found = findKey(section, name);
  if (found >= 0) {
    Line& l = lines_[size_t(found)];
    size_t keep = l.valueStart;
    // A blank after "=" is the file's style; keep it.
    while (keep < l.raw.size() && isBlank(l.raw[keep]) && !encoded.empty())
      ++keep;
    if (keep == l.raw.size())
      keep = l.valueStart;
    l.raw = l.raw.substr(0, keep) + encoded;
    return true;
  }

  Line line;
  line.raw = name + "=" + encoded;
  line.kind = LineKind::Key;
  line.section = section;
  line.key = name;
  line.valueStart = name.size() + 1;

  // Behind the section's last key, or right behind its header when it has none.
  long insertAt = -1;
  bool sectionExists = section.empty();
  for (size_t i = 0; i < lines_.size(); ++i) {
    const Line& l = lines_[i];
    if (!sameName(l.section, section))
      continue;
    if (l.kind == LineKind::Header && insertAt < 0) {
      sectionExists = true;
      insertAt = long(i) + 1;
    } else if (l.kind == LineKind::Key) {
      insertAt = long(i) + 1;
    }
  }
  if (sectionExists) {
    if (insertAt < 0)
      insertAt = 0;
    lines_.insert(lines_.begin() + insertAt, std::move(line));
    return true;
  }

  if (!lines_.empty() && !trim(lines_.back().raw).empty())
    lines_.push_back(classify("", lines_.back().section));
  Line header;
  header.raw = "[" + section + "]";
  header.kind = LineKind::Header;
  header.section = section;
  lines_.push_back(std::move(header));
  lines_.push_back(std::move(line));
  finalNewline_ = true;
  return true;
}

bool readWholeFile(const std::string& path, std::string& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in)
    return false;
  std::ostringstream buffer;
  buffer << in.rdbuf();
  if (in.bad())
    return false;
  text = buffer.str();
  return true;
}

namespace {

std::function<void(AtomicWriteStep)> stepHook;

void reach(AtomicWriteStep step) {
  if (stepHook)
    stepHook(step);
}

// "<file>.tmp-<process id>-XXXXXX": the temporaries of one writing process.
std::string temporaryPrefix(const std::string& target) {
  return target + ".tmp-" + std::to_string(::getpid()) + "-";
}

}  // namespace

void setAtomicWriteStepHook(std::function<void(AtomicWriteStep)> hook) {
  stepHook = std::move(hook);
}

int replaceFileAtomically(const std::string& path, const std::string& text) {
  // A link is followed, so that the file it names is replaced and the link stays.
  std::string target = path;
  if (char* resolved = ::realpath(path.c_str(), nullptr)) {
    target = resolved;
    std::free(resolved);
  }
  struct stat old {};
  const bool existed = ::stat(target.c_str(), &old) == 0;
  // A file the user made read-only is not replaced, whoever runs the viewer.
  if (existed && (old.st_mode & S_IWUSR) == 0)
    return EACCES;

  reach(AtomicWriteStep::Create);
  std::string temporary = temporaryPrefix(target) + "XXXXXX";
  int fd = ::mkstemp(temporary.data());
  if (fd < 0)
    return errno;
  int error = 0;
  const auto failed = [&error](bool ok) {
    if (!ok && error == 0)
      error = errno != 0 ? errno : EIO;
    return !ok;
  };
  reach(AtomicWriteStep::Mode);
  if (existed)
    failed(::fchmod(fd, old.st_mode & 07777) == 0);
  else {
    mode_t mask = ::umask(0);
    ::umask(mask);
    failed(::fchmod(fd, 0666 & ~mask) == 0);
  }
  reach(AtomicWriteStep::Write);
  const char* data = text.data();
  size_t left = text.size();
  while (error == 0 && left > 0) {
    ssize_t n = ::write(fd, data, left);
    if (n < 0 && errno == EINTR)
      continue;
    if (n <= 0) {
      failed(false);
      break;
    }
    data += n;
    left -= size_t(n);
  }
  reach(AtomicWriteStep::Flush);
  if (error == 0)
    failed(::fsync(fd) == 0);
  reach(AtomicWriteStep::Close);
  failed(::close(fd) == 0);
  reach(AtomicWriteStep::Rename);
  if (error == 0)
    failed(::rename(temporary.c_str(), target.c_str()) == 0);
  if (error != 0) {
    ::unlink(temporary.c_str());
    return error;
  }
  // The rename itself reaches the disk with the folder.
  reach(AtomicWriteStep::FlushFolder);
  std::string folder = target.substr(0, target.find_last_of('/') + 1);
  int dirFd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (dirFd >= 0) {
    ::fsync(dirFd);
    ::close(dirFd);
  }
  return 0;
}

void removeStaleTemporaries(const std::string& path, const std::function<bool(long)>& running) {
  namespace fs = std::filesystem;
  std::string target = path;
  if (char* resolved = ::realpath(path.c_str(), nullptr)) {
    target = resolved;
    std::free(resolved);
  }
  const fs::path file(target);
  const std::string prefix = file.filename().string() + ".tmp-";
  std::error_code error;
  for (fs::directory_iterator it(file.parent_path(), error), end; !error && it != end;
       it.increment(error)) {
    const std::string name = it->path().filename().string();
    if (name.compare(0, prefix.size(), prefix) != 0)
      continue;
    const size_t dash = name.find('-', prefix.size());
    if (dash == std::string::npos || dash == prefix.size())
      continue;
    const std::string digits = name.substr(prefix.size(), dash - prefix.size());
    if (digits.size() > 9 || digits.find_first_not_of("0123456789") != std::string::npos)
      continue;
    const long pid = std::stol(digits);
    if (pid != long(::getpid()) && !running(pid)) {
      std::error_code ignored;
      fs::remove(it->path(), ignored);
    }
  }
}

}  // namespace tvx
