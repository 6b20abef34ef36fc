#include "common/LengthFormats.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(LengthFormats, InchesAndMillimetresWithTheirMarksAndShortForms) {
  EXPECT_EQ(LengthText(254000, 0, 100000), "0.1000\"");
  EXPECT_EQ(LengthText(254000, 1, 100000), "2.540mm");
  EXPECT_EQ(LengthValueText(127, 0, 100000), "0.00005") << "a fifth digit when it is needed";
  EXPECT_EQ(LengthValueText(1234567, 1, 100000), "12.3457");
  EXPECT_EQ(ShortLengthText(1234567, 1, 100000), "12.3mm");
  EXPECT_EQ(ShortLengthText(254000, 0, 100000), "0.100\"");
  EXPECT_EQ(LengthValueText(-2000, 1, 1000), "-2.000") << "units per mm and the sign";
}

TEST(LengthFormats, AnyUnitOtherThanTheMillimetreShowsAsInch) {
  EXPECT_EQ(&lengthPictures(1), &MillimetrePictures);
  EXPECT_EQ(&lengthPictures(0), &InchPictures);
  EXPECT_EQ(&lengthPictures(7), &InchPictures);
  EXPECT_EQ(&lengthPictures(-1), &InchPictures);
  EXPECT_EQ(LengthText(2540000, 3, 100000), LengthText(2540000, 0, 100000));
}

}  // namespace
}  // namespace tvx
