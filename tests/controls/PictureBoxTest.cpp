#include "platform/controls/PictureBox.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPainter>
#include <filesystem>
#include <fstream>

#include "platform/controls/PictureBytes.h"
#include "support/ScreenScript.h"
#include "support/TempDirectory.h"
#include "support/desktop/FormDriver.h"

namespace {

using screen::Icon;

/// A picture whose left half is red and whose right half is blue.
QImage TwoHalves(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::blue);
  QPainter(&image).fillRect(0, 0, width / 2, height, Qt::red);
  return image;
}

QByteArray Encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format, 95);
  return bytes;
}

rt::Binary Bytes(const QByteArray& bytes) { return {bytes.begin(), bytes.end()}; }

/// The JPEG with the mark of a camera that was turned: the picture must be turned right by 90 degrees.
QByteArray TurnedRight(QByteArray jpeg) {
  const unsigned char mark[] = {0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0,    0,    'M', 'M',
                                0,    42,   0, 0,  0,   8,   0,   1,   0x01, 0x12, 0,   3,
                                0,    0,    0, 1,  0,   6,   0,   0,   0,    0,    0,   0};
  return jpeg.insert(2, reinterpret_cast<const char*>(mark), sizeof mark);
}

bool IsRed(QRgb pixel) { return qRed(pixel) > 200 && qGreen(pixel) < 60 && qBlue(pixel) < 60; }
bool IsBlue(QRgb pixel) { return qBlue(pixel) > 200 && qGreen(pixel) < 60 && qRed(pixel) < 60; }

/// The rectangle with the picture's colors in what a box shows.
QRect ColoredPart(QWidget& box) {
  const QImage shown = box.grab().toImage();
  QRect part;
  for (int y = 0; y < shown.height(); ++y)
    for (int x = 0; x < shown.width(); ++x)
      if (IsRed(shown.pixel(x, y)) || IsBlue(shown.pixel(x, y))) part |= QRect(x, y, 1, 1);
  return part;
}

class PictureBoxTest : public testing::Test {
 protected:
  PictureBoxTest() { box_.resize(300, 206); }
  std::string Write(const std::string& name, const QByteArray& bytes) {
    std::ofstream(directory_.Path(name), std::ios::binary).write(bytes.data(), bytes.size());
    return directory_.Path(name);
  }
  std::string Said() { return box_.accessibleDescription().toStdString(); }

  test::TempDirectory directory_;
  test::ScreenScript screen_;
  ui::PictureBox box_{"imgAsset"};
};

TEST_F(PictureBoxTest, KeepsTheBytesAsTheyCome) {
  EXPECT_TRUE(box_.Content().IsNull());
  EXPECT_EQ(Said(), "No picture");
  box_.Clear();
  EXPECT_FALSE(box_.Changed()) << "nothing was taken away";
  for (const char* format : {"bmp", "jpg"}) {
    const QByteArray bytes = Encoded(TwoHalves(60, 40), format);
    ASSERT_TRUE(box_.LoadFile(Write("a.pic", bytes)));
    EXPECT_TRUE(box_.Changed());
    EXPECT_TRUE(box_.HasPicture());
    EXPECT_EQ(box_.Content().AsBinary(), Bytes(bytes)) << format;
  }
  const rt::Value stored = box_.Content();
  box_.ShowValue(stored);
  EXPECT_FALSE(box_.Changed());
  EXPECT_TRUE(box_.HasPicture());
  box_.Clear();
  EXPECT_TRUE(box_.Changed());
  EXPECT_TRUE(box_.Content().IsNull());
  box_.ShowValue(rt::Null{});
  EXPECT_FALSE(box_.Changed());
  EXPECT_FALSE(box_.HasPicture());
}

TEST_F(PictureBoxTest, ShowsPicturesInProportionAndNeverLargerThanTheyAre) {
  box_.ShowValue(Bytes(Encoded(TwoHalves(100, 50), "bmp")));
  EXPECT_EQ(ColoredPart(box_).size(), QSize(100, 50));
  EXPECT_NEAR(ColoredPart(box_).center().x(), 150, 2);
  box_.ShowValue(Bytes(Encoded(TwoHalves(2000, 1000), "jpg")));
  const QRect fitted = ColoredPart(box_);
  EXPECT_NEAR(fitted.width(), 2 * fitted.height(), 6);
  EXPECT_GT(fitted.width(), 280);
  EXPECT_LT(fitted.width(), 300);
  box_.resize(1000, 1000);
  EXPECT_GT(ColoredPart(box_).width(), 980) << "a larger window shows it larger";
  // The larger picture is sharp, too.
  const QImage shown = box_.grab().toImage();
  EXPECT_TRUE(IsRed(shown.pixel(496, 500)) && IsBlue(shown.pixel(504, 500)));
}

TEST_F(PictureBoxTest, LargePhotosAreDecodedSmallAndUpright) {
  const rt::Binary photo = Bytes(TurnedRight(Encoded(TwoHalves(4000, 3000), "jpg")));
  const auto decoded = ui::DecodePicture(photo, {300, 200});
  EXPECT_EQ(decoded.whole, QSize(3000, 4000));
  EXPECT_LE(decoded.image.width(), 400);
  EXPECT_GE(decoded.image.height(), 200);
  EXPECT_TRUE(IsRed(decoded.image.pixel(decoded.image.width() / 2, 10))) << "the left side is on top now";
  EXPECT_TRUE(IsBlue(decoded.image.pixel(decoded.image.width() / 2, decoded.image.height() - 10)));
}

TEST_F(PictureBoxTest, AFileThatIsNoPictureIsRefusedWithItsReason) {
  ASSERT_TRUE(box_.LoadFile(Write("good.bmp", Encoded(TwoHalves(10, 10), "bmp"))));
  const rt::Value good = box_.Content();
  const auto refuse = [&](const std::string& path, const std::string& reason) {
    screen_->Expect("'" + path + "' cannot be used as a picture: " + reason + ".", Icon::Exclamation);
    EXPECT_FALSE(box_.LoadFile(path));
    EXPECT_EQ(box_.Content().AsBinary(), good.AsBinary());
    EXPECT_TRUE(box_.HasPicture());
  };
  refuse(directory_.Path("none.bmp"), "there is no such file");
  refuse(directory_.Path(), "it is no file");
  refuse(Write("empty.jpg", ""), "it is no picture of a kind that can be shown here");
  refuse(Write("text.jpg", "Not a picture at all."), "it is no picture of a kind that can be shown here");
  const std::string large = Write("large.bmp", "BM");
  std::filesystem::resize_file(large, ui::kMostPictureBytes + 1);
  refuse(large, "it is larger than 64 MB");
  // 12,000 by 12,000 pixels, black and white: the head of the file is enough to refuse it.
  QByteArray wide = Encoded(QImage(8, 8, QImage::Format_Mono), "bmp");
  for (const int at : {18, 22}) wide.replace(at, 4, QByteArray("\xE0\x2E\0\0", 4));
  refuse(Write("wide.bmp", wide), "it has more than 100 million pixels");

  box_.ShowFile(directory_.Path("text.jpg"));
  EXPECT_FALSE(box_.HasPicture());
  EXPECT_EQ(Said(),
            "This file cannot be used as a picture: it is no picture of a kind that can be shown here.");
}

TEST_F(PictureBoxTest, ADamagedPictureIsToldAndStaysStored) {
  // The head is whole, but the rest is not a picture.
  QByteArray bytes = Encoded(TwoHalves(200, 100), "jpg").left(300);
  bytes.append(QByteArray(2000, '\0'));
  box_.ShowValue(Bytes(bytes));
  box_.grab();
  EXPECT_FALSE(box_.HasPicture());
  EXPECT_TRUE(Said().starts_with("The picture cannot be shown: it is ")) << Said();
  EXPECT_FALSE(box_.Changed());
  EXPECT_EQ(box_.Content().AsBinary(), Bytes(bytes));
}

}  // namespace
