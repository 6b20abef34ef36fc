#include "import/core/ImportJob.h"

#include "platform/SystemServices.h"

namespace tvx {

CatalogueText importKindText(ImportKind kind) {
  switch (kind) {
  case ImportKind::ArtworkRS274X:
    return {"62368", "Artwork GERBER RS-274-X"};
  case ImportKind::ArtworkRS274D:
    return {"62369", "Artwork GERBER RS-274-D"};
  case ImportKind::ExcellonFormatTwo:
    return {"62372", "Drilling EXCELLON Format Two"};
  case ImportKind::ExcellonFormatOne:
    return {"62373", "Drilling EXCELLON Format One"};
  case ImportKind::DrillingRS274X:
    return {"62370", "Drilling GERBER RS-274-X"};
  case ImportKind::DrillingRS274D:
    return {"62371", "Drilling GERBER RS-274-D"};
  case ImportKind::Hpgl:
    return {"62375", "HPGL Format file"};
  case ImportKind::Dxf:
    return {"62374", "AutoCAD DXF file"};
  case ImportKind::Unknown:
    break;
  }
  return {"", "unknown file"};
}

std::string importKindName(const SystemServices& services, ImportKind kind) {
  CatalogueText t = importKindText(kind);
  if (t.id.empty())
    return std::string(t.text);
  return services.LocalMessage(std::string(t.text), std::string(t.id));
}

}  // namespace tvx
