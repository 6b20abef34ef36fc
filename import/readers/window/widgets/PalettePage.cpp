#include "import/readers/window/widgets/PalettePage.h"

#include "common/widgets/PropertyGrid.h"
#include "kernel/Palette.h"

#include <QGridLayout>
#include <QPushButton>
#include <QWidget>

namespace tvx {

namespace {
constexpr int PaletteColumns = 8;
constexpr int SquareSize = 24;
}  // namespace

QWidget* makePalettePage(const std::function<void(int32_t)>& clicked) {
  auto* page = new QWidget;
  auto* squares = new QGridLayout(page);
  for (int colour = 0; colour < PaletteSize; ++colour) {
    auto* square = new QPushButton;
    square->setObjectName(QString("picColor%1").arg(colour));
    square->setFixedSize(SquareSize, SquareSize);
    square->setStyleSheet(
        QString("background-color: %1; border: 1px solid gray;")
            .arg(PropertyGrid::colourOf(int32_t(paletteRgb()[size_t(colour)])).name()));
    QObject::connect(square, &QPushButton::clicked, page, [clicked, colour] { clicked(colour); });
    squares->addWidget(square, colour / PaletteColumns, colour % PaletteColumns);
  }
  squares->setRowStretch(PaletteSize / PaletteColumns, 1);
  return page;
}

}  // namespace tvx
