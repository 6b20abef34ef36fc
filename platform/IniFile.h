// A settings file in INI sections, kept line by line so that a write touches one line only.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tvx {

// The parsed text of one settings file. Reading is lenient: a byte-order mark, CR LF or LF
// endings, lines outside any section, duplicate keys (the first one counts) and lines that are
// neither a section, a key nor a comment are all accepted. Every line that is not changed is
// written back exactly as it was read.
class IniDocument {
public:
  IniDocument() = default;
  explicit IniDocument(const std::string& text) { parse(text); }

  void parse(const std::string& text);
  std::string text() const;

  // The value of key in section (both compared case-blind), or nothing when it is not there.
  // A value written in double quotes is read without them.
  std::optional<std::string> value(const std::string& section, const std::string& key) const;

  // Sets key in section, adding the key (behind the section's last key) or the section (at the
  // end) when missing. Returns false for a value that cannot be held on one line.
  bool setValue(const std::string& section, const std::string& key, const std::string& value);

  // The keys of one section in file order, first occurrences only.
  std::vector<std::string> keys(const std::string& section) const;

  // The text a value takes in the file: quoted when blanks at its ends or enclosing quotes
  // would otherwise be lost on reading.
  static std::string encodeValue(const std::string& value);

private:
  enum class LineKind { Other, Header, Key };
  struct Line {
    std::string raw;  // the line as read, without its ending
    LineKind kind = LineKind::Other;
    std::string section;    // the section the line belongs to (a header's own name)
    std::string key;        // for a key line
    size_t valueStart = 0;  // for a key line: where the value begins in raw
    // The line's own ending as read, so that a file of mixed endings is written back as read;
    // a line added (or the last one, read without ending) takes the file's first ending.
    enum class Ending { File, Lf, CrLf } ending = Ending::File;
  };
  static Line classify(std::string raw, const std::string& currentSection);
  // Index of the first line holding key in section, or -1.
  long findKey(const std::string& section, const std::string& key) const;

  std::vector<Line> lines_;
  bool bom_ = false;
  bool crlf_ = false;
  bool finalNewline_ = true;
};

// Reads the whole file into text; false when it does not exist or cannot be read.
bool readWholeFile(const std::string& path, std::string& text);

// Replaces the file's contents by text atomically: the text goes to a temporary file in the same
// folder ("<file>.tmp-<process id>-XXXXXX"), which is flushed to disk and then renamed over the old
// file. A file without write permission for its owner is not replaced (EACCES). On any failure the
// old file is left untouched, the temporary is removed, and the result is the error number; 0 on
// success.
int replaceFileAtomically(const std::string& path, const std::string& text);

// Removes the temporaries that writers of this file left when their process died: those of
// processes for which running gives false.
void removeStaleTemporaries(const std::string& path, const std::function<bool(long)>& running);

// The steps of a replacement, for tests that stop a writer at each of them.
enum class AtomicWriteStep { Create, Mode, Write, Flush, Close, Rename, FlushFolder };
void setAtomicWriteStepHook(std::function<void(AtomicWriteStep)> hook);

}  // namespace tvx
