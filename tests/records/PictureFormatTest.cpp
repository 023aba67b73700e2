#include "records/PictureFormat.h"

#include <gtest/gtest.h>
#include <QtCore/QMimeDatabase>
#include <set>
#include <string>

namespace quillmere {
namespace {

/// The compiler names a format that is missing here.
bool isFormat(int value) {
  switch (static_cast<PictureFormat>(value)) {
    case PictureFormat::png:
    case PictureFormat::jpeg:
    case PictureFormat::heif:
      return true;
  }
  return false;
}

/// A file's first bytes.
std::string head(PictureFormat format) {
  const auto& [offset, bytes] = traits(format).signature;
  std::string head(offset, '\0');
  head += bytes;
  return head;
}

TEST(PictureFormats, EachHasItsPlaceInTheList) {
  std::set<PictureFormat> listed(kPictureFormats.begin(), kPictureFormats.end());
  EXPECT_EQ(listed.size(), kPictureFormats.size());
  for (int value = -1; value < 100; ++value) {
    EXPECT_EQ(listed.contains(static_cast<PictureFormat>(value)), isFormat(value)) << value;
  }
}

TEST(PictureFormats, EachCanBeTold) {
  for (const PictureFormat format : kPictureFormats) {
    EXPECT_FALSE(traits(format).extensions.empty());
    EXPECT_FALSE(traits(format).signature.bytes.empty()) << traits(format).contentType;
  }
}

TEST(PictureFormats, AnExtensionStandsForOne) {
  std::set<std::string_view> seen;
  for (const PictureFormat format : kPictureFormats) {
    for (const std::string_view extension : traits(format).extensions) {
      EXPECT_EQ(formatOfExtension(extension), format) << extension;
      EXPECT_TRUE(seen.insert(extension).second) << extension;
      EXPECT_EQ(extension.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"), std::string_view::npos)
          << extension;
    }
  }
  EXPECT_EQ(seen, (std::set<std::string_view>{"png", "jpeg", "jpg", "heic", "heif"}));
}

TEST(PictureFormats, ANewFileHasAnExtensionOfItsFormat) {
  EXPECT_EQ(fileExtension(PictureFormat::png), "png");
  for (const PictureFormat format : kPictureFormats) EXPECT_EQ(formatOfExtension(fileExtension(format)), format);
}

TEST(PictureFormats, AnExtensionIsKnownInAnyCase) {
  EXPECT_EQ(formatOfExtension("PNG"), PictureFormat::png);
  EXPECT_EQ(formatOfExtension("Jpg"), PictureFormat::jpeg);
  EXPECT_EQ(formatOfExtension("hEIC"), PictureFormat::heif);
}

TEST(PictureFormats, OtherExtensionsStandForNone) {
  for (const std::string_view extension :
       {"", "gif", "tiff", "webp", "pn", "pngs", ".png", "png ", "\xff", "heifs", "jpe"}) {
    EXPECT_EQ(formatOfExtension(extension), std::nullopt) << extension;
  }
  EXPECT_EQ(formatOfExtension(std::string_view("png\0", 4)), std::nullopt);
}

/// The byte that a file of the format must have at that place.
std::optional<char> demanded(PictureFormat format, size_t place) {
  const auto& [offset, bytes] = traits(format).signature;
  return place >= offset && place - offset < bytes.size() ? std::optional(bytes[place - offset]) : std::nullopt;
}

TEST(PictureFormats, NoFileBeginsAsTwoOfThemDoWhereBothDemandSomething) {
  for (const PictureFormat one : kPictureFormats) {
    for (const PictureFormat other : kPictureFormats) {
      if (one == other) continue;
      int common = 0;
      int same = 0;
      for (size_t place = 0; place < 16; ++place) {
        const auto first = demanded(one, place);
        const auto second = demanded(other, place);
        common += first && second;
        same += first && first == second;
      }
      EXPECT_TRUE(common == 0 || same < common) << traits(one).contentType << ", " << traits(other).contentType;
    }
  }
}

TEST(PictureFormats, ASignatureTellsTheFormat) {
  for (const PictureFormat format : kPictureFormats) {
    const std::string whole = head(format);
    EXPECT_EQ(formatOfSignature(whole), format) << traits(format).contentType;
    EXPECT_EQ(formatOfSignature(whole + "and more"), format) << traits(format).contentType;
    EXPECT_LE(whole.size(), 16u) << "so many bytes are looked at";
    EXPECT_EQ(formatOfSignature(std::string_view(whole).substr(0, whole.size() - 1)), std::nullopt)
        << traits(format).contentType;
  }
}

TEST(PictureFormats, OtherBeginningsTellNone) {
  for (const char* text : {"", "P", "ftyp", "\x89PNG", "GIF89a", "This is a text.", "\xD8\xFF\xD8"}) {
    EXPECT_EQ(formatOfSignature(text), std::nullopt) << text;
  }
}

/// Other programs are offered a picture by these names.
TEST(PictureFormats, TheirContentTypesAreThoseOfTheDesktop) {
  const QMimeDatabase database;
  for (const PictureFormat format : kPictureFormats) {
    for (const std::string_view extension : traits(format).extensions) {
      const auto name =
          QStringLiteral("x.") + QString::fromUtf8(extension.data(), static_cast<qsizetype>(extension.size()));
      EXPECT_EQ(database.mimeTypeForFile(name, QMimeDatabase::MatchExtension).name().toStdString(),
                traits(format).contentType)
          << extension;
    }
  }
}

}  // namespace
}  // namespace quillmere
