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
  };
  // Widths that fill no whole byte or word test the row ends of the packed forms.
  const Case cases[] = {
      {"one colour", 5, 3, 1, 1},
      {"white on black", 37, 9, 2, 1},
      {"three colours", 33, 7, 3, 8},
      {"a full palette", 101, 40, 256, 8},
      {"one colour too many", 64, 64, 257, 32},
      {"a single pixel", 1, 1, 2, 1},
  };
  QTemporaryDir folder;
  ASSERT_TRUE(folder.isValid());
  QRandomGenerator random(7);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<QRgb> colours;
    for (int i = 0; i < c.colours; ++i)
      colours.push_back(qRgb(i & 0xFF, (i * 37) & 0xFF, i >> 8 ? 200 : 10));
    QImage drawn(c.width, c.height, QImage::Format_RGB32);
    int next = 0;  // every colour at least once, then at random
    for (int y = 0; y < c.height; ++y)
      for (int x = 0; x < c.width; ++x)
        drawn.setPixel(x, y,
                       colours[next < c.colours ? next++ : random.bounded(c.colours)] | 0xFF000000);
    const QImage expected = drawn.copy();
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
