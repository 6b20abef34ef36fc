// Writes a drawn picture as a PNG of as few bits a pixel as its colours allow.
#pragma once

#include <QImage>
#include <QString>

namespace tvx {

// How a picture was written: bits a pixel (1, 8 or 32).
struct PngWritten {
  bool ok = false;
  int bitsPerPixel = 0;
};

// Writes image (Format_RGB32 or Format_Indexed8) to path. A picture of at most two colours is
// written with one bit a pixel and one of at most 256 with eight, each with its exact palette, so
// that the file reads back pixel for pixel as drawn; more colours stay as they are. The conversion
// reuses the picture's own memory, so image is left spoilt and holds no picture afterwards. A fast
// compression level is used: a picture of hundreds of megapixels costs seconds at the default one.
PngWritten writeCompactPng(QImage& image, const QString& path);

}  // namespace tvx
