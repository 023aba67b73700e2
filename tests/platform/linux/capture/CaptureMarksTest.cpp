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

// --- Names ---

struct NameRow {
  const char* tool;
  const char* name;
};

TEST(CaptureMarks, NamesThatCaptureToolsGiveAreKnown) {
  for (const auto& [tool, name] : std::vector<NameRow>{
           {"GNOME Shell to 46", "Screenshot from 2024-01-02 03-04-05.png"},
           {"GNOME Shell, first collision", "Screenshot from 2024-01-02 03-04-05-1.png"},
           {"GNOME Shell, twelfth collision", "Screenshot from 2024-01-02 03-04-05-12.png"},
           {"GNOME Shell from 47", "Screenshot From 2024-01-02 03-04-05.png"},
           {"GNOME Shell in German", "Bildschirmfoto vom 2024-01-02 03-04-05.png"},
           {"GNOME Shell in French", "Capture d’écran du 2024-01-02 03-04-05.png"},
           {"GNOME Shell in Spanish", "Captura desde 2024-01-02 03-04-05.png"},
           {"GNOME Shell in Portuguese", "Captura de tela de 2024-01-02 03-04-05.png"},
           {"GNOME Shell in Russian", "Снимок экрана от 2024-01-02 03-04-05.png"},
           {"GNOME Shell in Chinese", "截图 2024-01-02 03-04-05.png"},
           {"gnome-screenshot, collision", "Screenshot from 2024-01-02 03-04-05 - 1.png"},
           {"Spectacle", "Screenshot_20240102_030405.png"},
           {"Spectacle, collision", "Screenshot_20240102_030405-1.png"},
           {"Spectacle in German", "Bildschirmfoto_20240102_030405.png"},
           {"Flameshot", "2024-01-02_03-04.png"},
           {"Flameshot, second in that minute", "2024-01-02_03-04_1.png"},
           {"Flameshot, eleventh in that minute", "2024-01-02_03-04_10.png"},
           {"Flameshot, older", "2024-01-02_03-04-05.png"},
           {"ksnip", "ksnip_20240102-030405.png"},
           {"xfce4-screenshooter", "Screenshot_2024-01-02_03-04-05.png"},
           {"xfce4-screenshooter, collision", "Screenshot_2024-01-02_03-04-05-1.png"},
           {"xfce4-screenshooter in German", "Bildschirmfoto_2024-01-02_03-04-05.png"},
           {"mate-screenshot", "Screenshot at 2024-01-02 03-04-05.png"},
           {"mate-screenshot, collision", "Screenshot at 2024-01-02 03-04-05 - 1.png"},
           {"scrot", "2024-01-02-030405_1280x800_scrot.png"},
           {"scrot, collision", "2024-01-02-030405_1280x800_scrot_000.png"},
           {"grim", "20240102_03h04m05s_grim.png"},
           {"grimshot", "2024-01-02T03:04:05,123456789+00:00.png"},
           {"hyprshot", "2024-01-02-030405_hyprshot.png"},
           {"niri", "Screenshot from 2024-01-02 03-04-05.png"},
           {"COSMIC", "Screenshot_2024-01-02_03-04-05.png"},
           {"elementary", "Screenshot from 2024-01-02 03.04.05.png"},
           {"elementary, scaled", "Screenshot from 2024-01-02 03.04.05@2x.png"},
           {"elementary, collision", "Screenshot from 2024-01-02 03.04.05 (1).png"},
           {"deepin, an area", "Screenshot_select-area_20240102030405.png"},
           {"deepin, a window", "Screenshot_firefox_20240102030405.png"},
           {"deepin, the screen", "Screenshot_20240102030405.png"},
           {"ChromeOS", "Screenshot 2024-01-02 03.04.05.png"},
           {"ChromeOS, 12 hours", "Screenshot 2024-01-02 3.04.05 PM.png"},
           {"ChromeOS, 12 hours, late", "Screenshot 2024-01-02 11.04.05 AM.png"},
           {"Android", "Screenshot_20240102-030405.png"},
           {"Android, of an app", "Screenshot_20240102-030405_Maps.jpg"},
           {"by sync, 12 hours", "Screenshot 2024-01-02 at 3.04.05 PM.png"},
           {"by sync, narrow blank", "Screenshot 2024-01-02 at 3.04.05\u202fPM.png"},
           {"by sync, 24 hours", "Screenshot 2024-01-02 at 13.04.05.png"},
           {"by sync, older", "Screen Shot 2024-01-02 at 3.04.05 PM.png"},
           {"by sync, numbered", "Screenshot (12).png"},
           {"by sync, numbered high", "Screenshot (1234).png"},
           {"by sync, date and time", "Screenshot 2024-01-02 030405.png"},
           {"in another case", "SCREENSHOT FROM 2024-01-02 03-04-05.PNG"},
       }) {
    EXPECT_TRUE(isCaptureName(name)) << tool << ": " << name;
  }
}

TEST(CaptureMarks, OtherNamesAreNot) {
  for (const char* name : {
           "",
           ".png",
           "a",
           "IMG_1234.jpg",
           "holiday.png",
           "2024-01-02.png",
           "invoice 2024-01-02.png",
           "2024-01-02 03-04-05.png",  // no word before it
           "IMG_20240102_030405.jpg",  // cameras
           "MVIMG_20240102_030405.jpg",
           "PANO_20240102_030405.jpg",
           "PXL_20240102_030405123.jpg",
           "photo_2024-01-02_03-04-05.jpg",  // messengers
           "WhatsApp Image 2024-01-02 at 03.04.05.jpeg",
           "Signal-2024-01-02-03-04-05-123.jpg",
           "Scan_20240102_030405.png",
           "Scan 2024-01-02 03-04-05.png",
           "Screenshot.png",
           "screenshot of the week.png",
           "My Screenshot (12).png",
           "Screenshot ().png",
           "Screenshot (12) edited.png",
           "Screenshot from 2024-01-02.png",
           "Screenshot from 2024-01-02 03-04.png",
           "Screenshot from 24-01-02 03-04-05.png",
           "Screenshot from 2024-01-02 03-04-05 edited.png",
           "Screenshot from 2024-01-02 03-04-05-.png",
           "Screenshot_20240102_03040.png",
           "Screenshot_2024010203040.png",
           "2024-01-02_03-04_notes.png",
           "2024-01-02_03.04.png",
           "ksnip_2024-01-02.png",
           "20240102_03h04m05s.png",
           "2024-01-02-030405_scrot.png",
           "2024-01-02T03:04:05.png",
           "Screenshot 2024-01-02 at .04.05.png",
       }) {
    EXPECT_FALSE(isCaptureName(name)) << name;
  }
}

TEST(CaptureMarks, ANameOfAnyBytesIsBorne) {
  std::string name;
  for (int byte = 1; byte < 256; ++byte) name.push_back(static_cast<char>(byte));
  EXPECT_FALSE(isCaptureName(name));
  EXPECT_FALSE(isCaptureName(std::string(255, '_') + ".png"));
  EXPECT_TRUE(isCaptureName("\xff\xfe 2024-01-02 03-04-05.png"));
}

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

}  // namespace
}  // namespace quillmere
