#include "app/cli/CompactPng.h"

#include <QImageWriter>

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace tvx {

namespace {

// zlib's level 1: fast, and still small for drawn pictures of large even areas.
constexpr int FastPngQuality = 80;

// The colours of a picture, up to 256, with a small hash from colour to palette index.
class Palette {
public:
  Palette() { slots_.fill(Empty); }
  // The index of colour, added when new; -1 once the palette is full.
  int indexOf(uint32_t colour) {
    if (colour == lastColour_ && lastIndex_ >= 0)
      return lastIndex_;
    uint32_t slot = hash(colour);
    while (slots_[slot] != Empty) {
      if (colours_[slots_[slot]] == colour)
        return remember(colour, slots_[slot]);
      slot = (slot + 1) & (SlotCount - 1);
    }
    if (colours_.size() == 256)
      return -1;
    slots_[slot] = uint16_t(colours_.size());
    colours_.push_back(colour);
    return remember(colour, slots_[slot]);
  }
  const std::vector<uint32_t>& colours() const { return colours_; }

private:
  static constexpr uint32_t SlotCount = 1024;
  static constexpr uint16_t Empty = 0xFFFF;
  static uint32_t hash(uint32_t c) { return (c * 2654435761u) >> 22; }
  int remember(uint32_t colour, int index) {
    lastColour_ = colour;
    lastIndex_ = index;
    return index;
  }
  std::array<uint16_t, SlotCount> slots_;
  std::vector<uint32_t> colours_;
  uint32_t lastColour_ = 0;
  int lastIndex_ = -1;
};

// The pixels of row y of a picture of Pixel (uint32_t for 32-bit RGB, uchar for 8-bit indices).
template <typename Pixel> const Pixel* rowOf(const uchar* memory, qsizetype line, int y) {
  return reinterpret_cast<const Pixel*>(memory + y * line);
}

// Runs of one colour are the rule in a drawn picture: the palette is asked only where the colour
// changes.
template <typename Pixel> bool countColours(const QImage& image, Palette& palette) {
  const int width = image.width(), height = image.height();
  for (int y = 0; y < height; ++y) {
    const Pixel* row = rowOf<Pixel>(image.constBits(), image.bytesPerLine(), y);
    Pixel last = row[0];
    if (palette.indexOf(last) < 0)
      return false;
    for (int x = 1; x < width; ++x)
      if (row[x] != last && palette.indexOf(last = row[x]) < 0)
        return false;
  }
  return true;
}

// Rewrites the picture's rows as palette indices of bits bits (1 or 8) from the start of its own
// memory: row y of the new picture ends before row y of the old one begins to be read, so no pixel
// is written over before it has been read. colourOf gives the colour of a pixel value.
template <typename Pixel, typename ColourOf>
QImage packInPlace(QImage& image, Palette& palette, int bits, ColourOf colourOf) {
  const int width = image.width(), height = image.height();
  const qsizetype sourceLine = image.bytesPerLine();
  const qsizetype packedLine = ((qsizetype(width) * bits + 31) / 32) * 4;
  // The value of index 1; a picture of one colour has none, and every bit stays 0.
  const std::vector<uint32_t>& values = palette.colours();
  const Pixel one = Pixel(values.size() == 2 ? values[1] : ~values[0]);
  uchar* memory = image.bits();
  for (int y = 0; y < height; ++y) {
    const Pixel* source = rowOf<Pixel>(memory, sourceLine, y);
    uchar* packed = memory + y * packedLine;
    if (bits == 8) {
      for (int x = 0; x < width; ++x)
        packed[x] = uchar(palette.indexOf(source[x]));
      continue;
    }
    const int whole = width / 8;
    for (int b = 0; b < whole; ++b) {
      const Pixel* eight = source + 8 * b;
      uchar byte = 0;
      for (int bit = 0; bit < 8; ++bit)
        byte = uchar(byte << 1 | (eight[bit] == one));
      packed[b] = byte;
    }
    if (width % 8) {
      uchar byte = 0;
      for (int x = 8 * whole; x < width; ++x)
        byte |= uchar((source[x] == one) << (7 - (x - 8 * whole)));
      packed[whole] = byte;
    }
    std::memset(packed + (width + 7) / 8, 0, size_t(packedLine - (width + 7) / 8));
  }
  QImage view(memory, width, height, packedLine,
              bits == 1 ? QImage::Format_Mono : QImage::Format_Indexed8);
  QList<QRgb> table;
  for (uint32_t value : values)
    table.push_back(colourOf(value));
  view.setColorTable(table);
  return view;
}

// An 8-bit picture whose pixels are the indices 0 and 1 packed in place into one bit a pixel,
// eight pixels at a time: the multiplication gathers the low bits of eight bytes into the top
// byte, the first pixel in the highest bit.
QImage packTwoIndices(QImage& image) {
  const int width = image.width(), height = image.height();
  const qsizetype sourceLine = image.bytesPerLine();
  const qsizetype packedLine = ((qsizetype(width) + 31) / 32) * 4;
  uchar* memory = image.bits();
  for (int y = 0; y < height; ++y) {
    const uchar* source = memory + y * sourceLine;
    uchar* packed = memory + y * packedLine;
    const int whole = width / 8;
    for (int b = 0; b < whole; ++b) {
      uint64_t eight;
      std::memcpy(&eight, source + 8 * b, sizeof eight);
      packed[b] = uchar((eight * 0x8040201008040201ull) >> 56);
    }
    if (width % 8) {
      uchar byte = 0;
      for (int x = 8 * whole; x < width; ++x)
        byte |= uchar((source[x] & 1) << (7 - (x - 8 * whole)));
      packed[whole] = byte;
    }
    std::memset(packed + (width + 7) / 8, 0, size_t(packedLine - (width + 7) / 8));
  }
  QImage view(memory, width, height, packedLine, QImage::Format_Mono);
  view.setColorTable(image.colorTable());
  return view;
}

}  // namespace

PngWritten writeCompactPng(QImage& image, const QString& path) {
  QImageWriter writer(path, "png");
  writer.setQuality(FastPngQuality);
  const bool indexed = image.format() == QImage::Format_Indexed8;
  if (image.format() != QImage::Format_RGB32 && !indexed)
    return {writer.write(image), image.depth()};
  if (indexed && image.colorCount() <= 2) {
    // At most two colours in its table: every pixel is 0 or 1, nothing to count.
    const QImage packed = packTwoIndices(image);
    const bool ok = writer.write(packed);
    image = QImage();
    return {ok, 1};
  }
  Palette palette;
  const bool counted =
      indexed ? countColours<uchar>(image, palette) : countColours<uint32_t>(image, palette);
  // An 8-bit picture of more than two colours is already as small as a palette makes it.
  if (!counted || (indexed && palette.colours().size() > 2))
    return {writer.write(image), image.depth()};
  const int bits = palette.colours().size() <= 2 ? 1 : 8;
  const QList<QRgb> table = image.colorTable();
  const QImage packed =
      indexed ? packInPlace<uchar>(image, palette, bits,
                                   [&](uint32_t index) {
                                     return index < uint32_t(table.size()) ? table[index] : 0u;
                                   })
              : packInPlace<uint32_t>(image, palette, bits,
                                      [](uint32_t colour) { return colour | 0xFF000000u; });
  const bool ok = writer.write(packed);
  image = QImage();
  return {ok, bits};
}

}  // namespace tvx
