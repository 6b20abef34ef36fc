// A rendered picture as lit (1) and dark (0) pixels, row by row, for the tests that compare or
// measure the pictures gbrview draws.
#pragma once

#include <QImage>

#include <cstdint>
#include <vector>

namespace tvx::test {

struct LitPicture {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> lit;
  // Outside the picture nothing is lit.
  uint8_t at(int x, int y) const {
    return x >= 0 && y >= 0 && x < width && y < height ? lit[size_t(y) * size_t(width) + size_t(x)]
                                                       : uint8_t(0);
  }
};

// Which pixels count as lit.
inline bool halfIntensity(QRgb pixel) { return qGray(pixel) >= 128; }
inline bool notBlack(QRgb pixel) { return (pixel & 0xffffff) != 0; }

inline LitPicture litPictureOf(const QImage& image, bool (*isLit)(QRgb)) {
  LitPicture picture{image.width(), image.height(), {}};
  picture.lit.resize(size_t(picture.width) * size_t(picture.height));
  const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
  for (int y = 0; y < picture.height; ++y) {
    const QRgb* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
    for (int x = 0; x < picture.width; ++x)
      picture.lit[size_t(y) * size_t(picture.width) + size_t(x)] = isLit(line[x]) ? 1 : 0;
  }
  return picture;
}

}  // namespace tvx::test
