// Reading the tab-separated tables of the corpus and of the tests' data: the fields of a line, and
// a test name made of a file's name that stays unique among the rows.
#pragma once

#include <cctype>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace tvx::test {

// The fields of one line; a carriage return at its end is dropped.
inline std::vector<std::string> splitTabs(std::string line) {
  if (!line.empty() && line.back() == '\r')
    line.pop_back();
  std::vector<std::string> fields;
  size_t from = 0;
  for (size_t tab; (tab = line.find('\t', from)) != std::string::npos; from = tab + 1)
    fields.push_back(line.substr(from, tab - from));
  fields.push_back(line.substr(from));
  return fields;
}

// The file's name with every character that is no letter or digit made "_", and "_2", "_3" ... for
// the second and later rows of the same name.
inline std::string uniqueTestName(const std::string& path, std::map<std::string, int>& used) {
  std::string name = std::filesystem::path(path).filename().string();
  for (char& c : name)
    if (!std::isalnum(static_cast<unsigned char>(c)))
      c = '_';
  const int n = used[name]++;
  return n > 0 ? name + "_" + std::to_string(n + 1) : name;
}

}  // namespace tvx::test
