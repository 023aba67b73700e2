#include "platform/linux/capture/CaptureNames.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

struct NameRow {
  const char* tool;
  const char* name;
};

TEST(CaptureNames, NamesThatCaptureToolsGiveAreKnown) {
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
           {"GNOME Shell in Korean, the date last", "스크린샷, 2024-01-02 03-04-05.png"},
           {"gnome-screenshot in Chinese, the date first", "2024-01-02 03-04-05 创建的截图.png"},
           {"gnome-screenshot in Georgian, around the date", "ეკრანის ანაბეჭდი 2024-01-02 03-04-05-დან.png"},
           {"mate-screenshot in Polish, collision", "Zrzut ekranu z 2024-01-02 03-04-05 - 2.png"},
           {"MATE in Serbian, without blanks", "снимак-екрана-2024-01-02 03-04-05.png"},
           {"Spectacle in German", "Bildschirmfoto_20240102_030405.png"},
           {"ScreenGrab", "screen-2024-01-02-03-04-05.png"},
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
           {"by sync in German", "Bildschirmfoto 2024-01-02 um 03.04.05.png"},
           {"by sync in Spanish, two words", "Captura de pantalla 2024-01-02 a las 3.04.05.png"},
           {"by sync in Japanese", "スクリーンショット 2024-01-02 3.04.05.png"},
           {"by sync in Chinese, no blank", "截屏2024-01-02 03.04.05.png"},
           {"by sync in Dutch, numbered", "Schermopname (3).png"},
           {"decomposed, as other systems store names", "Capture d’e\u0301cran 2024-01-02 a\u0300 03.04.05.png"},
           {"in another case, of other letters", "СНИМОК ЭКРАНА ОТ 2024-01-02 03-04-05.PNG"},
           {"in another case", "SCREENSHOT FROM 2024-01-02 03-04-05.PNG"},
       }) {
    EXPECT_TRUE(CaptureName::of(name)) << tool << ": " << name;
  }
}

TEST(CaptureNames, OtherNamesAreNot) {
  for (const char* name : {
           "",
           ".png",
           "a",
           "IMG_1234.jpg",
           "holiday.png",
           "2024-01-02.png",
           "invoice 2024-01-02.png",
           "2024-01-02 03-04-05.png",          // no word before it
           "Invoice 2024-01-02 03-04-05.png",  // another word
           "Rechnung_20240102_030405.png",
           "Invoice_2024-01-02_03-04-05-1.png",
           "Invoice_20240102030405.png",
           "Invoice 2024-01-02 at 3.04.05 PM.png",
           "Invoice (12).png",
           "My Screenshot from 2024-01-02 03-04-05.png",
           "Screenshot from2024-01-02 03-04-05.png",
           "Screenshot_notes_20240102_030405.png",
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
    EXPECT_FALSE(CaptureName::of(name)) << name;
  }
}

TEST(CaptureNames, ANameOfAnyBytesIsBorne) {
  std::string name;
  for (int byte = 1; byte < 256; ++byte) name.push_back(static_cast<char>(byte));
  EXPECT_FALSE(CaptureName::of(name));
  EXPECT_FALSE(CaptureName::of(std::string(255, '_') + ".png"));
  EXPECT_FALSE(CaptureName::of("\xff\xfe 2024-01-02 03-04-05.png"));
}

TEST(CaptureNames, TheDayIsThatOfTheDate) {
  const auto dayOf = [](const char* name) { return CaptureName::of(name).value_or(CaptureName{}).day; };
  EXPECT_EQ(dayOf("Screenshot from 2024-01-02 03-04-05.png"), QDate(2024, 1, 2));
  EXPECT_EQ(dayOf("Screenshot_20240229_030405-1.png"), QDate(2024, 2, 29));
  EXPECT_EQ(dayOf("Screenshot_20240102030405.png"), QDate(2024, 1, 2));
  EXPECT_EQ(dayOf("Screenshot_20241302_030405.png"), std::nullopt) << "no such day";
  EXPECT_EQ(dayOf("Screenshot (20240102).png"), QDate(2024, 1, 2));
  EXPECT_EQ(dayOf("Screenshot (12).png"), std::nullopt);
}

}  // namespace
}  // namespace quillmere
