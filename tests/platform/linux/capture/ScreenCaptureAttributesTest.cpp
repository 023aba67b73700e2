#include "platform/linux/capture/ScreenCaptureAttributes.h"

#include <sys/xattr.h>
#include <cstring>

#include "support/Files.h"
#include "support/Images.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

const std::string kTag = "kMDItemIsScreenCapture";
const std::string kType = "kMDItemScreenCaptureType";
const std::string kRect = "kMDItemScreenCaptureGlobalRect";

// --- Binary property lists as the desktop that invented them writes them ---

std::string number(uint64_t value, size_t bytes) {
  std::string text;
  for (size_t i = bytes; i-- > 0;) text.push_back(static_cast<char>(value >> (8 * i)));
  return text;
}

/// A list of these objects, the first of which is its top.
std::string binaryList(const std::vector<std::string>& objects) {
  std::string list = "bplist00";
  std::string offsets;
  for (const std::string& object : objects) {
    offsets += number(list.size(), 1);
    list += object;
  }
  const size_t table = list.size();
  return list + offsets + std::string(6, '\0') + "\x01\x01" + number(objects.size(), 8) + number(0, 8) +
         number(table, 8);
}

std::string realObject(double value) {
  uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return "\x23" + number(bits, 8);
}
std::string integerObject(int64_t value) {
  if (value >= 0 && value < 256) return "\x10" + number(static_cast<uint64_t>(value), 1);
  if (value >= 0 && value < 65536) return "\x11" + number(static_cast<uint64_t>(value), 2);
  return "\x13" + number(static_cast<uint64_t>(value), 8);
}
std::string stringObject(const std::string& text) {
  return static_cast<char>(0x50 + text.size()) + text;
}

const std::string kTrue = binaryList({"\x09"});
const std::string kFalse = binaryList({"\x08"});

std::string xmlList(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n" +
         content + "\n</plist>\n";
}

class ScreenCaptureAttributesTest : public ::testing::Test {
 protected:
  ScreenCaptureAttributesTest() { writeFile(file, testing::smallPNG()); }
  void setNamed(const std::string& name, const std::string& value) {
    ASSERT_EQ(::setxattr(file.c_str(), name.c_str(), value.data(), value.size(), 0), 0)
        << name << ": " << std::strerror(errno);
  }
  void set(const std::string& key, const std::string& value) { setNamed("user.com.apple.metadata:" + key, value); }
  std::optional<bool> tag() const { return ScreenCaptureAttributes::isScreenCapture(file); }
  std::optional<CaptureKind> kind() const { return ScreenCaptureAttributes::captureKind(file); }
  std::optional<QRectF> rect() const { return ScreenCaptureAttributes::globalRect(file); }

  TemporaryFolder folder;
  FileURL file = folder.file("picture.png");
};

TEST_F(ScreenCaptureAttributesTest, TheBytesOfTrueAreTheTag) {
  const std::string bytes("bplist00\x09\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x09",
                          42);
  ASSERT_EQ(kTrue, bytes) << "what the tests build is what is written in the wild";
  set(kTag, bytes);
  EXPECT_EQ(tag(), true);
}

TEST_F(ScreenCaptureAttributesTest, AFileWithoutTheAttributeHasNoTag) {
  EXPECT_EQ(tag(), std::nullopt);
  EXPECT_EQ(kind(), std::nullopt);
  EXPECT_EQ(rect(), std::nullopt);
  EXPECT_EQ(ScreenCaptureAttributes::isScreenCapture(folder.file("missing.png")), std::nullopt);
}

TEST_F(ScreenCaptureAttributesTest, ATrailingNulOfAFileServerIsNoMatter) {
  set(kTag, kTrue + '\0');
  set(kType, binaryList({stringObject("window")}) + '\0');
  EXPECT_EQ(tag(), true);
  EXPECT_EQ(kind(), CaptureKind::window);
}

TEST_F(ScreenCaptureAttributesTest, TheNamesThatFileServersGiveAreKnown) {
  setNamed("user.DosStream.com.apple.metadata:kMDItemIsScreenCapture:$DATA", kTrue + '\0');
  setNamed("user.DosStream.com.apple.metadata\xef\x80\xa2kMDItemScreenCaptureType:$DATA",
           binaryList({stringObject("display")}) + '\0');
  EXPECT_EQ(tag(), true);
  EXPECT_EQ(kind(), CaptureKind::display);
}

TEST_F(ScreenCaptureAttributesTest, ThePlainNameWinsOverALongerOne) {
  setNamed("user.DosStream.com.apple.metadata:kMDItemIsScreenCapture:$DATA", kFalse);
  set(kTag, kTrue);
  EXPECT_EQ(tag(), true);
}

struct TagCase {
  std::string name;
  std::string value;
  bool isCapture;
};
void PrintTo(const TagCase& item, std::ostream* out) {
  *out << item.name;
}

class TagValueTest : public ScreenCaptureAttributesTest, public ::testing::WithParamInterface<TagCase> {};

INSTANTIATE_TEST_SUITE_P(
    Values, TagValueTest,
    ::testing::Values(
        TagCase{"false", kFalse, false}, TagCase{"number 1", binaryList({integerObject(1)}), true},
        TagCase{"number 0", binaryList({integerObject(0)}), false},
        TagCase{"number -1", binaryList({integerObject(-1)}), true},
        TagCase{"real 1.0", binaryList({realObject(1)}), true}, TagCase{"real 0.0", binaryList({realObject(0)}), false},
        TagCase{"not a number", binaryList({realObject(std::numeric_limits<double>::quiet_NaN())}), false},
        TagCase{"text", binaryList({stringObject("true")}), false},
        TagCase{"array", binaryList({"\xa1\x01", "\x09"}), false}, TagCase{"XML true", xmlList("<true/>"), true},
        TagCase{"XML false", xmlList("<false/>"), false}, TagCase{"XML number", xmlList("<integer>1</integer>"), true},
        TagCase{"XML with a NUL", xmlList("<true/>") + '\0', true}, TagCase{"one NUL", std::string(1, '\0'), false},
        TagCase{"garbage", "garbage", false}, TagCase{"bare head", "bplist00", false},
        TagCase{"cut short", kTrue.substr(0, 41), false}, TagCase{"cut to its body", kTrue.substr(0, 20), false},
        TagCase{"XML cut short", xmlList("<true/>").substr(0, 60), false},
        TagCase{"an offset far away", kTrue.substr(0, 34) + std::string(8, '\x7f'), false},
        TagCase{"a list of itself", binaryList({"\xa1" + std::string(1, '\0')}), false}));

TEST_P(TagValueTest, IsReadAsItSays) {
  set(kTag, GetParam().value);
  EXPECT_EQ(tag(), GetParam().isCapture);
}

TEST_F(ScreenCaptureAttributesTest, TheLongestValueThatAFileCanHoldIsRead) {
  // Only some file systems hold so much; one in memory does.
  const TemporaryFolder inMemory("/dev/shm");
  file = inMemory.file("picture.png");
  writeFile(file, "");
  const std::string name = "user.com.apple.metadata:" + kTag;
  set(kTag, std::string(65536, 'x'));
  EXPECT_EQ(tag(), false);
  const std::string tooLong(65537, 'x');
  EXPECT_EQ(::setxattr(file.c_str(), name.c_str(), tooLong.data(), tooLong.size(), 0), -1)
      << "no longer one can come from this kernel";
}

TEST_F(ScreenCaptureAttributesTest, AnEmptyValueIsNoTag) {
  set(kTag, "");
  EXPECT_EQ(tag(), std::nullopt);
}

// --- Kind ---

TEST_F(ScreenCaptureAttributesTest, TheBytesOfAKindAreTheKind) {
  std::string bytes("bplist00\x59selection\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x12",
                    51);
  set(kType, bytes);
  EXPECT_EQ(kind(), CaptureKind::selection);
  for (const auto& [text, expected] :
       {std::pair("display", CaptureKind::display), std::pair("window", CaptureKind::window)}) {
    set(kType, binaryList({stringObject(text)}));
    EXPECT_EQ(kind(), expected) << text;
  }
}

TEST_F(ScreenCaptureAttributesTest, AKindWithANulInsideIsNone) {
  // "bplist00", a text of nine bytes whose second is NUL, its offset and the trailer.
  std::string value("bplist00\x59s\0lection", 18);
  value += std::string("\x08", 1) + std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') + "\x01" +
           std::string(15, '\0') + "\x12";
  EXPECT_EQ(ScreenCaptureValues::captureKind(value), std::nullopt);
}

TEST_F(ScreenCaptureAttributesTest, AKindThatIsNotKnownIsNone) {
  for (const std::string& value : {binaryList({stringObject("hologram")}), binaryList({stringObject("")}),
                                   binaryList({stringObject("Window")}), kTrue, std::string("garbage")}) {
    set(kType, value);
    EXPECT_EQ(kind(), std::nullopt);
  }
}

// --- Rectangle ---

std::string rectList(const std::vector<std::string>& numbers) {
  std::vector<std::string> objects{static_cast<char>(0xa0 + numbers.size()) + std::string()};
  for (const std::string& object : numbers) {
    objects.front() += static_cast<char>(objects.size());
    objects.push_back(object);
  }
  return binaryList(objects);
}

TEST_F(ScreenCaptureAttributesTest, ARectangleMayHaveWholeAndFractionalNumbers) {
  set(kRect, rectList({integerObject(10), integerObject(600), realObject(320.5), realObject(240)}));
  EXPECT_EQ(rect(), QRectF(10, 600, 320.5, 240));
}

TEST_F(ScreenCaptureAttributesTest, ARectangleMayLieLeftAndAboveOfTheFirstScreen) {
  set(kRect, rectList({integerObject(-1440), realObject(-900.25), integerObject(100), integerObject(70000)}));
  EXPECT_EQ(rect(), QRectF(-1440, -900.25, 100, 70000));
}

TEST_F(ScreenCaptureAttributesTest, EqualNumbersMayShareOneObject) {
  set(kRect, binaryList({"\xa4\x01\x01\x02\x02", integerObject(0), integerObject(500)}));
  EXPECT_EQ(rect(), QRectF(0, 0, 500, 500));
}

TEST_F(ScreenCaptureAttributesTest, ARectangleMayStandInXml) {
  set(kRect,
      xmlList("<array><integer>-10</integer><real>20.5</real><integer>30</integer><integer>40</integer></array>"));
  EXPECT_EQ(rect(), QRectF(-10, 20.5, 30, 40));
}

TEST_F(ScreenCaptureAttributesTest, AnythingButFourNumbersIsNoRectangle) {
  const std::string one = integerObject(1);
  for (const std::string& value :
       {rectList({one, one, one}), rectList({one, one, one, one, one}), rectList({one, one, one, stringObject("4")}),
        rectList({one, one, one, realObject(std::numeric_limits<double>::infinity())}), rectList({}), kTrue}) {
    set(kRect, value);
    EXPECT_EQ(rect(), std::nullopt);
  }
}

// --- The tag and the marks of capture tools ---

TEST_F(ScreenCaptureAttributesTest, WithoutATagTheNameDecides) {
  EXPECT_FALSE(hasScreenCaptureTag(file));
  const FileURL named = folder.file("Screenshot_20240102_030405.png");
  writeFile(named, testing::smallPNG());
  EXPECT_TRUE(hasScreenCaptureTag(named));
}

TEST_F(ScreenCaptureAttributesTest, ATagOfFalseBeatsTheNameOfACapture) {
  file = folder.file("Screenshot_20240102_030405.png");
  writeFile(file, testing::smallPNG());
  set(kTag, kFalse);
  EXPECT_FALSE(hasScreenCaptureTag(file));
  set(kTag, kTrue);
  EXPECT_TRUE(hasScreenCaptureTag(file));
}

TEST_F(ScreenCaptureAttributesTest, ATagOfTrueBeatsAnOrdinaryName) {
  set(kTag, kTrue);
  EXPECT_TRUE(hasScreenCaptureTag(file));
}

}  // namespace
}  // namespace quillmere
