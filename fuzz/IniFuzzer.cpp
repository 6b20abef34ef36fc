// Any text as a settings file: parsed, written back unchanged, read key by key, then a value set
// in the first section named and a new one and read again. No input may crash, hang or read out
// of bounds, and the values set must read back.
#include "platform/IniFile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace tvx;
  const std::string text(reinterpret_cast<const char*>(data), size);
  IniDocument doc(text);
  // Every line not changed is written back as read, with its own line end: with no change the
  // text must come back whole.
  if (doc.text() != text)
    std::abort();

  // The first section named in the text, or none.
  std::string section;
  if (const size_t open = text.find('['); open != std::string::npos) {
    const size_t close = text.find(']', open);
    if (close != std::string::npos)
      section = text.substr(open + 1, close - open - 1);
  }
  for (const std::string& key : doc.keys(section))
    doc.value(section, key);

  // The last line of the text, cut to a few characters, as a value; a new key and an old one.
  std::string value = text.substr(text.rfind('\n') == std::string::npos ? 0 : text.rfind('\n') + 1);
  if (value.size() > 64)
    value.resize(64);
  for (const std::string& sec : {section, std::string("FuzzSection")}) {
    if (doc.setValue(sec, "FuzzKey", value)) {
      const auto read = doc.value(sec, "FuzzKey");
      if (!read || *read != value) {
        // A section name with brackets or line ends cannot name itself; only plain ones must hold.
        if (sec.find_first_of("[]\r\n=;") == std::string::npos && !sec.empty() &&
            sec.front() != ' ' && sec.back() != ' ')
          std::abort();
      }
      IniDocument(doc.text()).value(sec, "FuzzKey");
    }
  }
  return 0;
}
