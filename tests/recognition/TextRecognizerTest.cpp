#include "recognition/TextRecognizer.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <tesseract/baseapi.h>
#include <QtCore/QBuffer>
#include <QtGui/QPainter>
#include <filesystem>
#include <future>
#include <thread>

namespace quillmere {
namespace {

/// Called after each reading of a line by the engine.
std::function<void()> onLineRead;

}  // namespace
}  // namespace quillmere

/// Stands in for the engine's own, which it calls.
int tesseract::TessBaseAPI::Recognize(ETEXT_DESC* monitor) {
  using Own = int (*)(TessBaseAPI*, ETEXT_DESC*);
  static const auto own =
      reinterpret_cast<Own>(::dlsym(RTLD_NEXT, "_ZN9tesseract11TessBaseAPI9RecognizeEPNS_10ETEXT_DESCE"));
  const int failure = own(this, monitor);
  if (quillmere::onLineRead) quillmere::onLineRead();
  return failure;
}

namespace quillmere {
namespace {

const std::atomic<bool> kNever = false;

struct Look {
  QColor ground = Qt::white;
  QColor text = Qt::black;
  int pixels = 14;
  int scale = 1;
  const char* family = "DejaVu Sans";
};

QImage painted(const QStringList& lines, const Look& look) {
  const int height = look.pixels * 2;
  QImage image(QSize(640, height * (static_cast<int>(lines.size()) + 1)) * look.scale, QImage::Format_RGB32);
  image.fill(look.ground);
  QPainter painter(&image);
  painter.scale(look.scale, look.scale);
  QFont font(look.family);
  font.setPixelSize(look.pixels);
  painter.setFont(font);
  painter.setPen(look.text);
  for (int i = 0; i < lines.size(); ++i) painter.drawText(24, height * (i + 1), lines[i]);
  return image;
}

std::string text(const QStringList& lines) {
  return lines.join('\n').toStdString();
}

class TextRecognizerTest : public ::testing::Test {
 protected:
  /// "-" for nothing, which no line says.
  std::string read(const QImage& image) { return recognizer.recognizeText(image, kNever).value_or("-").toStdString(); }
  const QStringList lines{"Upload the quarterly report", "before Friday evening.", "Thanks, Maria"};
  TextRecognizer recognizer{QLocale::c()};
};

TEST_F(TextRecognizerTest, ReadsDarkTextOnLight) {
  EXPECT_EQ(read(painted(lines, {})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsLightTextOnDark) {
  EXPECT_EQ(read(painted(lines, {.ground = QColor(30, 30, 36), .text = QColor(220, 220, 220)})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsSmallText) {
  EXPECT_EQ(read(painted(lines, {.pixels = 11})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsScreensOfTwoPixelsAPoint) {
  EXPECT_EQ(read(painted(lines, {.scale = 2})), text(lines));
  EXPECT_EQ(read(painted(lines, {.pixels = 26, .scale = 2, .family = "Inter"})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsColouredText) {
  // Of about the same luminance as their grounds.
  EXPECT_EQ(read(painted(lines, {.ground = Qt::black, .text = QColor(60, 60, 255)})), text(lines));
  EXPECT_EQ(read(painted(lines, {.ground = QColor(0, 110, 0), .text = QColor(255, 60, 60)})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsFaintText) {
  EXPECT_EQ(read(painted(lines, {.ground = QColor(236, 236, 236), .text = QColor(145, 145, 145)})), text(lines));
  EXPECT_EQ(read(painted(lines, {.ground = QColor(30, 30, 30), .text = QColor(120, 120, 120)})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsTextThatCanHardlyBeSeen) {
  EXPECT_EQ(read(painted(lines, {.ground = QColor("#f0f0f0"), .text = QColor("#c0c0c0")})), text(lines));
  EXPECT_EQ(read(painted(lines, {.ground = QColor("#2b2b2b"), .text = QColor("#5a5a5a")})), text(lines));
  EXPECT_EQ(read(painted(lines, {.ground = QColor("#1e1e1e"), .text = QColor("#3c3c3c")})), text(lines));
}

TEST_F(TextRecognizerTest, ReadsCodeAsItIsTyped) {
  const QStringList code{"if __name__ == \"__main__\":", "self.read_only = a != b or c === d", "# ------------ done"};
  EXPECT_EQ(read(painted(code, {.pixels = 14, .scale = 2, .family = "DejaVu Sans Mono"})), text(code));
}

TEST_F(TextRecognizerTest, ReadsTextBesideAGrainyPhotograph) {
  QImage image = painted(lines, {}).copy(0, 0, 640, 112);
  unsigned random = 1;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 320; x < image.width(); ++x) {
      const auto channel = [&] {
        return 120 + static_cast<int>((random = random * 1103515245 + 12345) >> 16) % 29 - 14;
      };
      image.setPixel(x, y, qRgb(channel(), channel(), channel()));
    }
  }
  EXPECT_EQ(read(image), text(lines));
}

TEST_F(TextRecognizerTest, ReadsWhatJpegHasBlurred) {
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QBuffer::WriteOnly);
  ASSERT_TRUE(painted(lines, {}).save(&buffer, "JPG", 80));
  EXPECT_EQ(read(QImage::fromData(data, "JPG")), text(lines));
}

TEST_F(TextRecognizerTest, ReadsWordsOfSeveralColoursInALine) {
  QImage image(500, 40, QImage::Format_RGB32);
  image.fill(QColor(30, 30, 30));
  QPainter painter(&image);
  QFont font("DejaVu Sans Mono");
  font.setPixelSize(14);
  painter.setFont(font);
  int x = 20;
  for (const auto& [word, color] : {std::pair("return", QColor("#c586c0")),
                                    {"window", QColor("#9cdcfe")},
                                    {"number", QColor("#6a9955")},
                                    {"string", QColor("#f44747")}}) {
    painter.setPen(color);
    painter.drawText(x, 26, word);
    x += QFontMetrics(font).horizontalAdvance(QString(word) + ' ');
  }
  EXPECT_EQ(read(image), "return window number string");
}

TEST_F(TextRecognizerTest, ReadsLightAndDarkPartsOfOneScreen) {
  QImage image(900, 200, QImage::Format_RGB32);
  QPainter painter(&image);
  painter.drawImage(0, 0,
                    painted({"Settings", "Account"}, {.ground = QColor(30, 34, 40), .text = QColor(230, 230, 230)}));
  painter.drawImage(300, 0, painted({"Recent documents", "Nothing to show"}, {}));
  painter.end();
  EXPECT_EQ(read(image.copy(0, 0, 900, 84)), "Settings\nRecent documents\nAccount\nNothing to show");
}

TEST_F(TextRecognizerTest, ReadsButtons) {
  QImage image(300, 60, QImage::Format_RGB32);
  image.fill(QColor(240, 240, 240));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  QFont font("DejaVu Sans");
  font.setPixelSize(13);
  painter.setFont(font);
  painter.setPen(QColor(120, 120, 120));
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(QRectF(20.5, 15.5, 100, 28), 6, 6);
  painter.setPen(Qt::black);
  painter.drawText(QRect(20, 15, 100, 28), Qt::AlignCenter, "Cancel");
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(40, 100, 220));
  painter.drawRoundedRect(QRectF(140, 15, 120, 29), 6, 6);
  painter.setPen(Qt::white);
  painter.drawText(QRect(140, 15, 120, 29), Qt::AlignCenter, "Save Changes");
  painter.end();
  EXPECT_EQ(read(image), "Cancel\nSave Changes");
}

TEST_F(TextRecognizerTest, ReadsTextOnNothing) {
  QImage image(painted(lines, {}).size(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  QFont font("DejaVu Sans");
  font.setPixelSize(14);
  painter.setFont(font);
  painter.drawText(24, 28, "Copied from a window");
  painter.end();
  EXPECT_EQ(read(image), "Copied from a window");
}

TEST_F(TextRecognizerTest, ReadsTallPicturesOnceThroughout) {
  QStringList many;
  const QStringList words{"garden", "mountain", "keyboard", "letter", "window", "evening", "summer"};
  for (int i = 0; i < 40; ++i) many += "The " + words[i % 7] + " of the " + words[i / 7];
  const QImage part = painted(many, {});
  // Wide enough for several bands.
  QImage image(5000, part.height(), QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter(&image).drawImage(0, 0, part);
  EXPECT_EQ(read(image), text(many));
}

TEST_F(TextRecognizerTest, ReadsLongLinesAsOne) {
  QStringList words;
  for (int i = 0; i < 60; ++i) words += QStringList{"garden", "mountain", "keyboard", "letter", "window"}[i % 5];
  const QString line = words.join(' ');
  QFont font("DejaVu Sans");
  font.setPixelSize(12);
  QImage image(QFontMetrics(font).horizontalAdvance(line) + 40, 40, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setFont(font);
  painter.drawText(20, 25, line);
  painter.end();
  EXPECT_EQ(read(image), line.toStdString());
}

TEST_F(TextRecognizerTest, FindsNothingInEmptyPictures) {
  QImage white(400, 300, QImage::Format_RGB32);
  white.fill(Qt::white);
  EXPECT_EQ(read(white), "");
}

TEST_F(TextRecognizerTest, FindsNothingInTinyPicturesAndNone) {
  for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(1, 200), QSize(200, 1)}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::black);
    EXPECT_EQ(read(image), "");
  }
  EXPECT_EQ(read(QImage()), "");
}

TEST_F(TextRecognizerTest, ReadsHugePicturesWithoutACopyOfThem) {
  QImage image(10000, 10000, QImage::Format_Grayscale8);
  ASSERT_FALSE(image.isNull());
  image.fill(255);
  QPainter(&image).drawImage(200, 9000, painted({"Far below"}, {}));
  EXPECT_EQ(read(image), "Far below");
}

TEST_F(TextRecognizerTest, IsCancelledBefore) {
  const std::atomic<bool> isCancelled = true;
  EXPECT_EQ(recognizer.recognizeText(painted(lines, {}), isCancelled), std::nullopt);
}

TEST_F(TextRecognizerTest, IsCancelledMeanwhileAndGoesOnToWorkAfterwards) {
  read(painted({"Warm"}, {}));
  // Minutes of reading.
  QStringList many;
  for (int i = 0; i < 150; ++i) many += "The quick brown fox jumps over the lazy dog and reads on";
  const QImage part = painted(many, {.pixels = 12});
  QImage image(part.width() * 12, part.height(), QImage::Format_RGB32);
  QPainter painter(&image);
  for (int i = 0; i < 12; ++i) painter.drawImage(i * part.width(), 0, part);
  painter.end();
  std::atomic<bool> isCancelled = false;
  auto reading = std::async(std::launch::async, [&] { return recognizer.recognizeText(image, isCancelled); });
  EXPECT_EQ(reading.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
  isCancelled = true;
  EXPECT_EQ(reading.get(), std::nullopt);
  EXPECT_EQ(read(painted(lines, {})), text(lines));
}

TEST_F(TextRecognizerTest, ADoubtfulLineIsReadTwiceUnlessItIsCancelled) {
  QImage doubtful = painted({"xq #7 ~"}, {.pixels = 7});
  std::atomic<bool> isCancelled = false;
  int readings = 0;
  onLineRead = [&] { ++readings; };
  recognizer.recognizeText(doubtful, isCancelled);
  EXPECT_EQ(readings, 2);
  readings = 0;
  onLineRead = [&] {
    ++readings;
    isCancelled = true;
  };
  EXPECT_EQ(recognizer.recognizeText(doubtful, isCancelled), std::nullopt);
  EXPECT_EQ(readings, 1);
  onLineRead = nullptr;
}

TEST_F(TextRecognizerTest, TwoAtOnceReadTheSameAsOneAfterTheOther) {
  const QImage first = painted(lines, {}), second = painted({"Another picture", "with other words"}, {.scale = 2});
  const auto firstText = read(first), secondText = read(second);
  TextRecognizer other{QLocale::c()};
  auto reading = std::async(std::launch::async, [&] { return other.recognizeText(second, kNever); });
  EXPECT_EQ(read(first), firstText);
  EXPECT_EQ(reading.get().value_or("-").toStdString(), secondText);
}

TEST_F(TextRecognizerTest, StartsNoThreads) {
  const auto threads = [] {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
  };
  const QImage image = painted(QStringList(20, "How many threads does it take to read this line of text?"), {});
  std::optional<QString> found;
  const auto before = threads();
  std::atomic<bool> isDone = false;
  std::thread reading([&] {
    found = recognizer.recognizeText(image, kNever);
    isDone = true;
  });
  auto most = threads();
  while (!isDone) most = std::max(most, threads());
  reading.join();
  EXPECT_TRUE(found);
  // The runtime of the engine would keep its threads for the next time; one that was joined stays listed for a moment.
  for (int i = 0; i < 1000 && threads() > before; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(threads(), before);
  EXPECT_LE(most, before + 1);
}

TEST_F(TextRecognizerTest, FailsWithoutData) {
  ::setenv("TESSDATA_PREFIX", "/nowhere", 1);
  const auto none = recognizer.recognizeText(painted(lines, {}), kNever);
  ::unsetenv("TESSDATA_PREFIX");
  EXPECT_EQ(none, std::nullopt);
  EXPECT_EQ(read(painted(lines, {})), text(lines)) << "the next time it may be there";
}

TEST(RecognitionLanguages, AreThatOfTheLocaleAndEnglish) {
  EXPECT_EQ(recognitionLanguages(QLocale("de_AT")), "deu+eng");
  EXPECT_EQ(recognitionLanguages(QLocale("fr")), "fra+eng");
  EXPECT_EQ(recognitionLanguages(QLocale("nb")), "nor+eng");
  EXPECT_EQ(recognitionLanguages(QLocale("zh_TW")), "chi_tra+eng");
  EXPECT_EQ(recognitionLanguages(QLocale("zh_CN")), "chi_sim+eng");
  EXPECT_EQ(recognitionLanguages(QLocale("en_GB")), "eng");
  EXPECT_EQ(recognitionLanguages(QLocale::c()), "eng");
}

TEST_F(TextRecognizerTest, ReadsEnglishWhereTheLocalesLanguageIsNotInstalled) {
  TextRecognizer welsh{QLocale("cy")};
  EXPECT_EQ(welsh.recognizeText(painted(lines, {}), kNever).value_or("-").toStdString(), text(lines));
}

}  // namespace
}  // namespace quillmere
