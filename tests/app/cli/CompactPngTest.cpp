// A picture written with as few bits a pixel as its colours allow reads back pixel for pixel.
#include "app/cli/CompactPng.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(CompactPng, EveryPictureReadsBackAsDrawnWithTheFewestBits) {
  struct Case {
    const char* name;
    int width, height, colours;
    int bits;
    QImage::Format format = QImage::Format_RGB32;
    bool spareColour = false;  // an 8-bit picture's table holds one colour more than it uses
  };
  // Widths that fill no whole byte or word test the row ends of the packed forms.
  const Case cases[] = {
      {"one colour", 5, 3, 1, 1},
      {"white on black", 37, 9, 2, 1},
      {"three colours", 33, 7, 3, 8},
      {"a full palette", 101, 40, 256, 8},
      {"one colour too many", 64, 64, 257, 32},
      {"a single pixel", 1, 1, 2, 1},
      {"8-bit, two colours", 37, 9, 2, 1, QImage::Format_Indexed8},
      {"8-bit, two colours and a spare", 37, 9, 2, 1, QImage::Format_Indexed8, true},
      {"8-bit, three colours", 33, 7, 3, 8, QImage::Format_Indexed8, true},
  };
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  QRandomGenerator random(7);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<QRgb> colours;
    for (int i = 0; i < c.colours; ++i)
      colours.push_back(qRgb(i & 0xFF, (i * 37) & 0xFF, i >> 8 ? 200 : 10));
    const bool indexed = c.format == QImage::Format_Indexed8;
    QImage drawn(c.width, c.height, c.format);
    if (indexed) {
      // Palette entries beyond the used ones, as the rasteriser leaves them, must not count.
      QList<QRgb> table;
      for (QRgb colour : colours)
        table.push_back(colour | 0xFF000000);
      if (c.spareColour)
        table.push_back(qRgb(1, 2, 3));
      drawn.setColorTable(table);
    }
    int next = 0;  // every colour at least once, then at random
    for (int y = 0; y < c.height; ++y)
      for (int x = 0; x < c.width; ++x) {
        const int pick = next < c.colours ? next++ : random.bounded(c.colours);
        drawn.setPixel(x, y, indexed ? uint(pick) : colours[size_t(pick)] | 0xFF000000);
      }
    const QImage expected = drawn.convertToFormat(QImage::Format_RGB32);
    const QString path = folder.filePath(QString(c.name) + ".png");
    const PngWritten written = writeCompactPng(drawn, path);
    EXPECT_TRUE(written.ok);
    EXPECT_EQ(written.bitsPerPixel, c.bits);
    const QImage read = QImage(path).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(read.size(), expected.size());
    int wrong = 0;
    for (int y = 0; y < c.height; ++y)
      for (int x = 0; x < c.width; ++x)
        wrong += read.pixel(x, y) != expected.pixel(x, y);
    EXPECT_EQ(wrong, 0);
  }
}

TEST(CompactPng, AFolderThatCannotBeWrittenFails) {
  QImage drawn(4, 4, QImage::Format_RGB32);
  drawn.fill(Qt::black);
  EXPECT_FALSE(writeCompactPng(drawn, "/nonexistent-folder/picture.png").ok);
}

}  // namespace
}  // namespace tvx
