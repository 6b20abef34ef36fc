#include "import/gerber/ApertureLabel.h"

#include "platform/SystemServices.h"

namespace tvx {

std::string ApertureLabel(int32_t dCode) {
  if (dCode == 0)
    return std::string(9, ' ');
  std::string label = "D" + std::to_string(dCode) + "*";
  if (label.size() > 5)
    label.resize(5);
  return label;
}

std::string specialApertureType(const SystemServices& services, const ApertureUse& use,
                                const std::vector<PrimitiveRow>& primitives) {
  const int32_t first = use.Size;
  const int32_t kind = first >= 1 && first <= static_cast<int32_t>(primitives.size())
                           ? primitives[size_t(first - 1)].Kind
                           : 0;
  switch (kind) {
  case primitive::RoundWithHole:
    return services.LocalMessage("Circle", "62233");
  case primitive::Rectangle:
    return services.LocalMessage("Rectangle", "62234");
  case primitive::Oval:
    return services.LocalMessage("Obround", "62235");
  case primitive::RegularPolygon:
    return services.LocalMessage("Reg.polygon", "62236");
  case primitive::Macro:
    return services.LocalMessage("Macro ", "62237") + "\"" + primitives[size_t(first - 1)].Text +
           "\"";
  default:
    return services.LocalMessage("Undef.", "62238");
  }
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
