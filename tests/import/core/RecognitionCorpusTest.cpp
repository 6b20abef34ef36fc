// Real files from the shared corpus are recognised as the kind their format implies. The few
// that are not are listed with the rule that decides them; a small edit that takes that rule's
// cause away must then give the implied kind.
#include "import/core/FileRecognition.h"

#include "common/FileLayer.h"
#include "import/gerber/ImportTestSupport.h"

#include "support/CorpusPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>

namespace tvx {
namespace {

const std::string CorpusDir = test::corpusDir();

// Kinds that a format of the manifest implies. Aperture tables and the rest are no import files.
std::set<int> impliedKinds(const std::string& format) {
  static const std::map<std::string, std::set<int>> kinds = {
      {"gerber-x", {1}}, {"gerber-d", {2}}, {"excellon", {3, 4}}, {"dxf", {8}}, {"hpgl", {7}}};
  auto it = kinds.find(format);
  return it == kinds.end() ? std::set<int>{0} : it->second;
}

// Files whose text gives another kind than their format, and why.
struct Exception {
  const char* path;
  int kind;
  const char* reason;
  // Replacing every from by to takes the cause away.
  std::string from;
  std::string to;
};

const Exception Exceptions[] = {
    {"gerbv/ekf/l1.off", 0,
     "NUL bytes pad the file after M02*: the Gerber walk rejects any control character, and the "
     "text has no tool letters for Excellon",
     std::string(1, '\0'), ""},
    {"gerbv/amacro-ref/jj1.drl", 0,
     "its tools are T02 and T03: without a call of tool one (T1, T01, T001) no Excellon result",
     "T03", "T01"},
    {"gerbv/test-inputs/test-drill-slot-drilled-g85.exc", 0,
     "its only tool is T4: without a call of tool one (T1, T01, T001) no Excellon result", "T4",
     "T1"},
    {"hp2xx/hp-tests/spectrum.plt", 0,
     "the first IN stands in the printer escape BPINPSNPPC and is followed by PS, which is no "
     "command of the table",
     "BPINPSNPPC", "BPIN;PSNPPC"},
};

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

TEST(RecognitionCorpusTest, EveryFileIsTheKindItsFormatImplies) {
  if (CorpusDir.empty())
    GTEST_SKIP() << "no corpus found (set TVX_CORPUS_DIR)";
  const std::vector<test::ManifestEntry> entries = test::readManifest(CorpusDir);
  ASSERT_FALSE(entries.empty());

  ScriptedPrompts prompts;
  SystemServices services(&prompts);
  FileLayer files(services, &prompts);
  FileRecogniser recogniser(files, services);
  std::set<std::string> excepted;
  for (const test::ManifestEntry& e : entries) {
    SCOPED_TRACE(e.path + " (" + e.format + ")");
    const int kind = static_cast<int>(recogniser.RecogniseFile(CorpusDir + "/" + e.path));
    const std::set<int> implied = impliedKinds(e.format);
    auto exception = std::find_if(std::begin(Exceptions), std::end(Exceptions),
                                  [&](const Exception& x) { return e.path == x.path; });
    if (exception == std::end(Exceptions)) {
      EXPECT_TRUE(implied.count(kind)) << "recognised as " << kind;
      continue;
    }
    excepted.insert(e.path);
    SCOPED_TRACE(exception->reason);
    EXPECT_EQ(kind, exception->kind);
    const std::string text = test::readBytes(CorpusDir + "/" + e.path);
    const std::string edited = replaceAll(text, exception->from, exception->to);
    ASSERT_NE(edited, text);
    YieldClock clock;
    EXPECT_TRUE(implied.count(static_cast<int>(recogniseText(edited, clock))));
  }
  EXPECT_EQ(excepted.size(), std::size(Exceptions)) << "an excepted file left the manifest";
  EXPECT_TRUE(prompts.shown.empty());
}

}  // namespace
}  // namespace tvx
