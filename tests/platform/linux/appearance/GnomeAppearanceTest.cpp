#include "platform/linux/appearance/GnomeAppearance.h"

#include "support/CaptureFixture.h"
#include "support/EventLoop.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

struct Description {
  const char* text;
  const char* family;
  double size;
  QFont::Weight weight;
  bool isItalic;
};

TEST(FontDescriptionTest, HasFamilyStylesAndSize) {
  const Description descriptions[]{{"Cantarell 11", "Cantarell", 11, QFont::Normal, false},
                                   {"DejaVu Sans Bold 10.5", "DejaVu Sans", 10.5, QFont::Bold, false},
                                   {"Ubuntu Medium Italic 12", "Ubuntu", 12, QFont::Medium, true},
                                   {"Noto Sans, 10", "Noto Sans", 10, QFont::Normal, false},
                                   {"Bold 9", "Bold", 9, QFont::Normal, false}};
  for (const Description& description : descriptions) {
    const auto font = fontOf(QLatin1String(description.text));
    ASSERT_TRUE(font) << description.text;
    EXPECT_EQ(font->family(), QLatin1String(description.family)) << description.text;
    EXPECT_DOUBLE_EQ(font->pointSizeF(), description.size) << description.text;
    EXPECT_EQ(font->weight(), description.weight) << description.text;
    EXPECT_EQ(font->italic(), description.isItalic) << description.text;
  }
}

TEST(FontDescriptionTest, WithoutAFamilyOrASizeIsNone) {
  for (const char* text : {"", " ", "Sans", "11", "Sans 0", "Sans -3", "Sans 1e9", "Sans nan", ", 11"}) {
    EXPECT_EQ(fontOf(QLatin1String(text)), std::nullopt) << text;
  }
}

class GnomeAppearanceTest : public ::testing::Test {
 protected:
  GnomeAppearanceTest() { testing::useOwnSettingsStore(); }
  ~GnomeAppearanceTest() override {
    for (const auto& [schema, key] : std::exchange(changed, {})) run("reset", schema, key, {});
  }
  void set(const char* schema, const char* key, const char* value) {
    changed.emplace_back(schema, key);
    run("set", schema, key, value);
  }
  /// By another program, as the desktop's settings do it.
  static void run(const char* what, const std::string& schema, const std::string& key, const std::string& value) {
    const std::string command =
        "gsettings " + std::string(what) + " org.gnome.desktop." + schema + " " + key + " " + value;
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
  }
  bool becomes(const std::function<bool()>& condition) { return testing::runLoopUntil(condition); }

  Appearance now;
  std::vector<std::pair<std::string, std::string>> changed;
};

TEST_F(GnomeAppearanceTest, IsToldAtEachChange) {
  set("interface", "color-scheme", "prefer-dark");
  const GnomeAppearance following([this](const Appearance& appearance) { now = appearance; });
  EXPECT_TRUE(becomes([this] { return now.scheme == Scheme::dark; }));
  set("interface", "color-scheme", "prefer-light");
  EXPECT_TRUE(becomes([this] { return now.scheme == Scheme::light; }));
  set("interface", "color-scheme", "default");
  EXPECT_TRUE(becomes([this] { return now.scheme == Scheme::unknown; }));
  set("interface", "enable-animations", "false");
  EXPECT_TRUE(becomes([this] { return now.isMotionReduced; }));
  set("a11y.interface", "high-contrast", "true");
  EXPECT_TRUE(becomes([this] { return now.isHighContrast; }));
  EXPECT_EQ(now.font, std::nullopt) << "nobody chose one";
  set("interface", "font-name", "'DejaVu Serif 14'");
  EXPECT_TRUE(becomes([this] { return now.font && now.font->family() == QLatin1String("DejaVu Serif"); }));
}

TEST_F(GnomeAppearanceTest, OneThatWasLeftAloneTellsNothing) {
  const GnomeAppearance following([this](const Appearance& appearance) { now = appearance; });
  EXPECT_TRUE(becomes([this] { return now == Appearance(); }));
}

}  // namespace
}  // namespace quillmere
