#include "platform/linux/capture/CaptureMarks.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/Files.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using namespace CaptureMarks;
using testing::internationalTextChunk;
using testing::pngChunk;
using testing::pngWith;
using testing::TemporaryFolder;
using testing::textChunk;
using testing::writeFile;

// --- Text ---

TEST(CaptureMarks, TextsOfCaptureToolsAreKnown) {
  struct Row {
    const char* writer;
    const char* key;
    const char* value;
  };
  for (const auto& [writer, key, value] : std::vector<Row>{
           {"GNOME Shell and gnome-screenshot", "Software", "gnome-screenshot"},
           {"mate-screenshot", "Software", "mate-screenshot"},
           {"Spectacle, a window", "windowTitle", "Konsole"},
           {"Spectacle, a screen", "screen", "HDMI-1"},
           {"Spectacle, a place", "logicalX", "0"},
           {"Spectacle, several screens", "subGeometryList", "0,0,1x1"},
           {"by sync", "XML:com.adobe.xmp",
            "<rdf:Description><exif:UserComment>Screenshot</exif:UserComment></rdf:Description>"},
       }) {
    EXPECT_TRUE(isCaptureText({{key, value}})) << writer;
    EXPECT_TRUE(isCaptureText({{"Title", "x"}, {key, value}})) << writer;
  }
}

TEST(CaptureMarks, OtherTextsAreNot) {
  EXPECT_FALSE(isCaptureText({}));
  EXPECT_FALSE(isCaptureText({{"Software", "GIMP"}}));
  EXPECT_FALSE(isCaptureText({{"Software", "gnome-screenshot 41"}}));
  EXPECT_FALSE(isCaptureText({{"Title", "gnome-screenshot"}}));
  EXPECT_FALSE(isCaptureText({{"Creation Time", "2024-01-02T03:04:05+0000"}}));
  EXPECT_FALSE(isCaptureText({{"XML:com.adobe.xmp", "<exif:UserComment>A photo</exif:UserComment>"}}));
  EXPECT_FALSE(isCaptureText({{"Comment", "<exif:UserComment>Screenshot</exif:UserComment>"}}));
}

TEST(CaptureMarks, TheDayOfTakingIsReadFromTheText) {
  const QDate day(2024, 1, 2);
  EXPECT_EQ(dayInText({{"Creation Time", "2024-01-02T03:04:05+0100"}}), day);
  EXPECT_EQ(dayInText({{"Title", "x"}, {"XML:com.adobe.xmp", "<exif:DateTimeOriginal>2024-01-02T03:04:05</exif>"}}),
            day);
  EXPECT_EQ(dayInText({{"XML:com.adobe.xmp", "<a photoshop:DateCreated=\"2024-01-02T03:04:05\"/>"}}), day);
  EXPECT_EQ(dayInText({}), std::nullopt);
  EXPECT_EQ(dayInText({{"Creation Time", "2024-13-02T03:04:05"}}), std::nullopt);
  EXPECT_EQ(dayInText({{"Creation Time", "yesterday"}}), std::nullopt);
  EXPECT_EQ(dayInText({{"Title", "2024-01-02T03:04:05"}}), std::nullopt);
}

class CaptureTextTest : public ::testing::Test {
 protected:
  TextChunks chunksOf(std::string_view bytes) {
    writeFile(file, bytes);
    return readTextChunks(file);
  }
  const TemporaryFolder folder;
  const FileURL file = folder.file("picture.png");
};

TEST_F(CaptureTextTest, ChunksBeforeThePictureAreRead) {
  EXPECT_EQ(chunksOf(pngWith(textChunk("Software", "gnome-screenshot") + textChunk("Title", "") +
                             internationalTextChunk("Comment", "ü"))),
            (TextChunks{{"Software", "gnome-screenshot"}, {"Title", ""}, {"Comment", "ü"}}));
}

TEST_F(CaptureTextTest, ChunksAfterThePictureAreNot) {
  const auto after = testing::kPNGSignature + testing::kPNGHeader + testing::kPNGData +
                     textChunk("Software", "gnome-screenshot") + pngChunk("IEND", {});
  EXPECT_TRUE(chunksOf(after).empty());
}

TEST_F(CaptureTextTest, CompressedTextIsPassedOver) {
  EXPECT_EQ(chunksOf(pngWith(internationalTextChunk("A", "packed", 1) + textChunk("B", "plain"))),
            (TextChunks{{"B", "plain"}}));
}

TEST_F(CaptureTextTest, OfWhatIsNoPNGThereIsNone) {
  for (const std::string& bytes : {std::string(), std::string("\x89PNG"), std::string(5000, 'x'),
                                   "\xff\xd8\xff\xe0" + textChunk("Software", "gnome-screenshot")}) {
    EXPECT_TRUE(chunksOf(bytes).empty());
  }
}

TEST_F(CaptureTextTest, DamagedChunksAreBorne) {
  const std::string start = testing::kPNGSignature + testing::kPNGHeader;
  const std::string good = textChunk("B", "plain");
  const TextChunks onlyGood{{"B", "plain"}};
  EXPECT_EQ(chunksOf(pngWith(good + pngChunk("tEXt", "no end of the key"))), onlyGood);
  EXPECT_EQ(chunksOf(pngWith(good + pngChunk("tEXt", {}))), onlyGood);
  EXPECT_EQ(chunksOf(pngWith(good + pngChunk("iTXt", std::string("key\0", 4)))), onlyGood);
  EXPECT_EQ(chunksOf(pngWith(good + pngChunk("iTXt", std::string("key\0\0\0", 6)))), onlyGood);
  EXPECT_EQ(chunksOf(pngWith(good + pngChunk("iTXt", std::string("key\0\0\0en\0", 9)))), onlyGood);
  EXPECT_EQ(chunksOf(start + good + std::string("\xff\xff\xff\xfftEXt", 8)), onlyGood);
  EXPECT_EQ(chunksOf(start + good + std::string("\0\0\0\x50tEXtshort", 13)), onlyGood);
  EXPECT_EQ(chunksOf(start + good + std::string("\0\0", 2)), onlyGood);
}

TEST_F(CaptureTextTest, AtMostOneMebibyteOfTheFileIsRead) {
  const std::string filler = pngChunk("zzZz", std::string(600'000, 'x'));
  EXPECT_EQ(chunksOf(pngWith(filler + textChunk("A", "near"))).size(), 1u);
  EXPECT_TRUE(chunksOf(pngWith(filler + filler + textChunk("A", "far"))).empty());
}

TEST_F(CaptureTextTest, OfAPipeOrAnAbsentFileThereIsNone) {
  EXPECT_TRUE(readTextChunks(folder.file("absent.png")).empty());
  ASSERT_EQ(::mkfifo(folder.file("pipe.png").c_str(), 0600), 0);
  EXPECT_TRUE(readTextChunks(folder.file("pipe.png")).empty());
}

TEST_F(CaptureTextTest, NameOrTextMarkACapture) {
  writeFile(folder.file("plain.png"), testing::smallPNG());
  writeFile(folder.file("2024-01-02_03-04.png"), testing::smallPNG());
  writeFile(folder.file("marked.png"), pngWith(textChunk("Software", "gnome-screenshot")));
  EXPECT_FALSE(marksCapture(folder.file("plain.png")));
  EXPECT_TRUE(marksCapture(folder.file("2024-01-02_03-04.png")));
  EXPECT_TRUE(marksCapture(folder.file("marked.png")));
}

TEST_F(CaptureTextTest, TheDateOfTakingIsThatOfTheTextElseOfTheNameAtTheEndOfTheDay) {
  const auto dateOf = [&](const char* name, std::string_view chunks) {
    writeFile(folder.file(name), pngWith(chunks));
    return captureDate(folder.file(name));
  };
  const auto endOf = [](int day) {
    return Date::fromUnix(QDate(2024, 1, day).addDays(1).startOfDay().toSecsSinceEpoch(), 0);
  };
  const std::string told = textChunk("Creation Time", "2024-01-05T03:04:05+0000");
  EXPECT_EQ(dateOf("2024-01-02_03-04.png", {}), endOf(2));
  EXPECT_EQ(dateOf("2024-01-02_03-04.png", told), endOf(5));
  EXPECT_EQ(dateOf("any.png", told), endOf(5));
  EXPECT_EQ(dateOf("any.png", {}), std::nullopt);
  EXPECT_EQ(dateOf("Invoice 2024-01-02 03-04-05.png", {}), std::nullopt);
}

}  // namespace
}  // namespace quillmere
