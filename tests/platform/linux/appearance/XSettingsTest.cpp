#include "platform/linux/appearance/XSettings.h"

#include <gtest/gtest.h>
#include <QtCore/QtEndian>

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

/// A property as a settings manager writes it.
class Property {
 public:
  explicit Property(bool isBigEndian = false) : isBigEndian_(isBigEndian) {
    bytes_ = QByteArray(1, isBigEndian ? 1 : 0) + QByteArray(3, '\0');
    add<quint32>(7);
  }
  Property& number(const QByteArray& name, qint32 value) {
    begin(0, name);
    addTo(entries_, value);
    return *this;
  }
  Property& text(const QByteArray& name, const QByteArray& value) {
    begin(1, name);
    addTo(entries_, static_cast<quint32>(value.size()));
    pad(value);
    return *this;
  }
  Property& color(const QByteArray& name) {
    begin(2, name);
    entries_ += QByteArray(8, '\x11');
    return *this;
  }
  Property& unknown() {
    begin(9, "Unknown");
    return *this;
  }
  QByteArray bytes() {
    QByteArray count;
    addTo(count, count_);
    return bytes_ + count + entries_;
  }

 private:
  template <typename Number>
  void add(Number number) {
    addTo(bytes_, number);
  }
  template <typename Number>
  void addTo(QByteArray& bytes, Number number) const {
    const Number written = isBigEndian_ ? qToBigEndian(number) : qToLittleEndian(number);
    bytes += QByteArray(reinterpret_cast<const char*>(&written), sizeof written);
  }
  void pad(const QByteArray& text) { entries_ += text + QByteArray((4 - text.size() % 4) % 4, '\0'); }
  void begin(char type, const QByteArray& name) {
    ++count_;
    entries_ += QByteArray(1, type) + QByteArray(1, '\0');
    addTo(entries_, static_cast<quint16>(name.size()));
    pad(name);
    addTo(entries_, quint32{3});
  }

  bool isBigEndian_;
  QByteArray bytes_;
  QByteArray entries_;
  quint32 count_ = 0;
};

Property some(bool isBigEndian) {
  Property property(isBigEndian);
  property.number("Gtk/EnableAnimations", 0).color("Some/Color").text("Net/ThemeName", "Adwaita-dark");
  return property.text("Gtk/FontName", "DejaVu Sans Bold 11").number("Xft/DPI", -1);
}

TEST(XSettingsTest, AreReadInEitherByteOrder) {
  for (const bool isBigEndian : {false, true}) {
    const auto settings = parsedXSettings(some(isBigEndian).bytes());
    EXPECT_EQ(settings.size(), 4);
    EXPECT_EQ(settings.value(QStringLiteral("Gtk/EnableAnimations")), QVariant(0));
    EXPECT_EQ(settings.value(QStringLiteral("Xft/DPI")), QVariant(-1));
    EXPECT_EQ(settings.value(QStringLiteral("Net/ThemeName")), QVariant(QStringLiteral("Adwaita-dark")));
  }
}

TEST(XSettingsTest, CutOffAnywhereTheyGiveWhatIsWhole) {
  const QByteArray whole = some(false).bytes();
  const auto settings = parsedXSettings(whole);
  for (qsizetype length = 0; length < whole.size(); ++length) {
    const auto cut = parsedXSettings(whole.first(length));
    EXPECT_LT(cut.size(), settings.size());
    for (auto entry = cut.begin(); entry != cut.end(); ++entry) EXPECT_EQ(entry.value(), settings.value(entry.key()));
  }
}

TEST(XSettingsTest, NothingIsReadBehindAKindThatIsNotKnown) {
  Property property;
  const auto settings = parsedXSettings(property.number("A", 1).unknown().number("B", 2).bytes());
  EXPECT_EQ(settings.keys(), QStringList{QStringLiteral("A")});
}

TEST(XSettingsTest, ACountOrLengthThatIsFarTooLargeIsSurvived) {
  QByteArray property = Property().number("A", 1).bytes();
  property.replace(8, 4, "\xff\xff\xff\xff");
  EXPECT_EQ(parsedXSettings(property).size(), 1);
  QByteArray text = Property().text("A", "b").bytes();
  text.replace(text.size() - 8, 4, "\xff\xff\xff\xff");
  EXPECT_EQ(parsedXSettings(text).size(), 0);
}

Appearance themed(const QString& theme) {
  return appearanceOf({{QStringLiteral("Net/ThemeName"), theme}});
}

TEST(XSettingsTest, ADarkThemeIsKnownByItsName) {
  for (const char* name : {"Adwaita-dark", "Arc-Dark", "Yaru-blue-dark", "Mint-Y-Dark-Aqua"}) {
    EXPECT_EQ(themed(QLatin1String(name)).scheme, Scheme::dark) << name;
  }
  for (const char* name : {"Adwaita", "Arc-Darker", "Darkness", ""}) {
    EXPECT_EQ(themed(QLatin1String(name)).scheme, Scheme::unknown) << name;
  }
}

TEST(XSettingsTest, ThemesOfHigherContrastAreKnownByTheirNames) {
  for (const char* name : {"HighContrast", "ContrastHigh"}) {
    EXPECT_TRUE(themed(QLatin1String(name)).isHighContrast) << name;
    EXPECT_EQ(themed(QLatin1String(name)).scheme, Scheme::unknown) << name;
  }
  EXPECT_TRUE(themed(QStringLiteral("HighContrastInverse")).isHighContrast);
  EXPECT_EQ(themed(QStringLiteral("HighContrastInverse")).scheme, Scheme::dark);
  EXPECT_FALSE(themed(QStringLiteral("Adwaita")).isHighContrast);
}

TEST(XSettingsTest, TellOfMotionAndTheFont) {
  const Appearance told = appearanceOf(parsedXSettings(some(false).bytes()));
  EXPECT_TRUE(told.isMotionReduced);
  ASSERT_TRUE(told.font);
  EXPECT_EQ(told.font->family(), QStringLiteral("DejaVu Sans"));
  EXPECT_EQ(appearanceOf(QMap<QString, QVariant>()), Appearance());
}

}  // namespace
}  // namespace quillmere
