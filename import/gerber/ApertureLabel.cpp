#include "import/gerber/ApertureLabel.h"

namespace tvx {

std::string ApertureLabel(int32_t dCode) {
  if (dCode == 0)
    return std::string(9, ' ');
  std::string label = "D" + std::to_string(dCode) + "*";
  if (label.size() > 5)
    label.resize(5);
  return label;
}

bool labelExcluded(const std::string& tag, int32_t dCode) {
  return tag.find(ApertureLabel(dCode)) != std::string::npos;
}

bool ExclusionCache::excluded(int32_t dCode) {
  if (empty_)
    return false;
  const auto found = known_.find(dCode);
  if (found != known_.end())
    return found->second;
  const bool barred = labelExcluded(tag_, dCode);
  known_.emplace(dCode, barred);
  return barred;
}

}  // namespace tvx
