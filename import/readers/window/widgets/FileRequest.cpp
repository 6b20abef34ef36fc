#include "import/readers/window/widgets/FileRequest.h"

#include "platform/SystemServices.h"

#include <QFileDialog>

namespace tvx {

std::string fileRequestTitle(const SystemServices& services, int mode) {
  return mode == filerequest::ForDisplay ? services.LocalMessage("Select File for Display", "62183")
                                         : services.LocalMessage("Select File for Import", "62184");
}

QStringList importFileFilters() {
  return {"All import files(*.*) (*)",
          "Gerber ASCII files (*.GBR) (*.GBR *.gbr)",
          "Gerber ASCII files (*.GBL) (*.GBL *.gbl)",
          "Gerber ASCII files (*.GTL) (*.GTL *.gtl)",
          "Gerber ASCII files (*.TOP) (*.TOP *.top)",
          "Gerber ASCII files (*.BOT) (*.BOT *.bot)",
          "Excellon ASCII files (*.DRL) (*.DRL *.drl)",
          "Excellon ASCII files (*.NCD) (*.NCD *.ncd)",
          "HPGL ASCII files (*.PLT) (*.PLT *.plt)",
          "HPGL ASCII files (*.HGL) (*.HGL *.hgl)",
          "AutoCAD Drawing Interchange files (*.DXF) (*.DXF *.dxf)"};
}

std::string askForFile(QWidget* parent, const SystemServices& services, int mode,
                       const std::string& startFolder) {
  return QFileDialog::getOpenFileName(
             parent, QString::fromStdString(fileRequestTitle(services, mode)),
             QString::fromStdString(startFolder), importFileFilters().join(";;"), nullptr,
             QFileDialog::ReadOnly)
      .toStdString();
}

}  // namespace tvx
