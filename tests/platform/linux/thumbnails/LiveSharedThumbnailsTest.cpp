#include "platform/linux/thumbnails/LiveSharedThumbnails.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fakes/DecodedPictures.h"
#include "formats/ImageFile.h"
#include "foundation/FileStatus.h"
#include "png/PngTexts.h"
#include "support/Files.h"
#include "support/PrivateMounts.h"
#include "support/TemporaryFolder.h"

namespace quillmere {
namespace {

using testing::namesIn;
using testing::readBytes;
using testing::setModified;
using testing::writeFile;

/// Half of it red, half blue, so that a picture can be told from its reflection.
QImage picture(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::red);
  for (int y = 0; y < height; ++y) {
    for (int x = width / 2; x < width; ++x) image.setPixelColor(x, y, Qt::blue);
  }
  return image;
}

std::string asPng(const QImage& image, const PngTexts& texts) {
  testing::TemporaryFolder folder;
  const FileURL url = folder.file("a.png");
  EXPECT_TRUE(image.save(url.displayPath(), "PNG"));
  return withPngTexts(readBytes(url), texts);
}

/// What GIO, with which other programs ask, says of a file.
struct InGio {
  explicit InGio(const FileURL& url) {
    GFile* file = g_file_new_for_path(url.c_str());
    GFileInfo* info = g_file_query_info(file, "thumbnail::*", G_FILE_QUERY_INFO_NONE, nullptr, nullptr);
    EXPECT_TRUE(info);
    if (info) {
      if (const char* path = g_file_info_get_attribute_byte_string(info, G_FILE_ATTRIBUTE_THUMBNAIL_PATH)) {
        thumbnail = FileURL::fromPath(path);
      }
      isValid = g_file_info_get_attribute_boolean(info, G_FILE_ATTRIBUTE_THUMBNAIL_IS_VALID);
      g_object_unref(info);
    }
    char* text = g_file_get_uri(file);
    uri = text;
    g_free(text);
    g_object_unref(file);
  }
  FileURL thumbnail;
  bool isValid = false;
  std::string uri;
};

/// The cache of this test program's person, where GIO looks.
class LiveSharedThumbnailsTest : public ::testing::Test {
 protected:
  LiveSharedThumbnailsTest() { std::filesystem::remove_all(cache.path()); }

  /// A screenshot of a while ago.
  FileURL shot(std::string_view name, int width = 640, int height = 360) {
    const FileURL url = folder.file(name);
    const FileURL plain = folder.file("written.png");
    EXPECT_TRUE(picture(width, height).save(plain.displayPath(), "PNG"));
    std::filesystem::rename(plain.path(), url.path());
    setModified(url, kLongAgo);
    return url;
  }
  void keep(const FileURL& url, int side = 128) {
    const auto seen = fileStatus(url);
    ASSERT_TRUE(seen);
    thumbnails.keep(url, *seen, ImageFile::thumbnail(url, side));
  }
  FileURL place(const FileURL& url, const char* size = "normal") const {
    char* sum = g_compute_checksum_for_string(G_CHECKSUM_MD5, InGio(url).uri.c_str(), -1);
    const FileURL result = cache.appending(size).appending(std::string(sum) + ".png");
    g_free(sum);
    return result;
  }
  static PngTexts textsFor(const FileURL& url) {
    struct stat status {};
    EXPECT_EQ(::lstat(url.c_str(), &status), 0);
    return {{"Thumb::URI", InGio(url).uri},
            {"Thumb::MTime", std::to_string(status.st_mtim.tv_sec)},
            {"Thumb::Size", std::to_string(status.st_size)},
            {"Software", "Another"}};
  }
  /// What another program made, in another shape, so that it is known again.
  FileURL madeByAnother(const FileURL& url, const PngTexts& texts, const char* size = "normal", int side = 128) {
    const FileURL thumbnail = place(url, size);
    std::filesystem::create_directories(thumbnail.parent().path());
    writeFile(thumbnail, asPng(picture(side, side), texts));
    return thumbnail;
  }
  QSize sizeFound(const FileURL& url, int pixels = 128) const {
    const auto found = thumbnails.find(url, pixels);
    return found ? found->size() : QSize();
  }
  size_t filesInCache() const {
    if (!std::filesystem::exists(cache.path())) return 0;
    size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(cache.path()))
      count += !entry.is_directory();
    return count;
  }
  static mode_t modeOf(const FileURL& url) {
    struct stat status {};
    EXPECT_EQ(::lstat(url.c_str(), &status), 0);
    constexpr mode_t kPermissions = 07777;
    return status.st_mode & kPermissions;
  }

  static constexpr Date kLongAgo{700000000.25};
  static constexpr QSize kAnothers{128, 128};
  testing::TemporaryFolder folder;
  const FileURL cache = FileURL::fromPath(std::getenv("XDG_CACHE_HOME")).appending("thumbnails");
  Date now = kLongAgo + 3600;
  LiveSharedThumbnails thumbnails{cache, testing::decodedPictures(), [this] { return now; }};
};

// --- As other programs see ours ---

TEST_F(LiveSharedThumbnailsTest, OtherProgramsFindOursWhateverTheNameOfTheFile) {
  std::vector<std::string> names{"a.png",
                                 "with space.png",
                                 " leading.png",
                                 "100%.png",
                                 "%20.png",
                                 "#1.png",
                                 "what?.png",
                                 "a&b=c+d,e;f:g@h$i.png",
                                 "(a)[b]{c}<d>.png",
                                 "quote\"'`.png",
                                 "back\\slash|^~.png",
                                 "star*!_-.png",
                                 "ümläut.png",
                                 "e\xCC\x81.png",
                                 "日本語のスクリーンショット.png",
                                 "😀.png",
                                 "עברית.png",
                                 "\u202Fnarrow space.png",
                                 "latin1 \xFC\xE4.png",
                                 "\xFF\xFE\x80.png",
                                 "line\nbreak\r\ttab.png",
                                 "bell\a\x7F\x01.png",
                                 "file:a.png",
                                 "..a.png",
                                 "no extension",
                                 std::string(251, 'x') + ".png"};
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '/') names.push_back(std::string("byte ") + static_cast<char>(byte) + ".png");
  }
  for (const std::string& name : names) {
    const FileURL url = shot(name, 160, 90);
    keep(url);
    const InGio found(url);
    EXPECT_EQ(found.thumbnail, place(url)) << ::testing::PrintToString(name);
    EXPECT_TRUE(found.isValid) << ::testing::PrintToString(name);
    EXPECT_EQ(sizeFound(url), QSize(128, 72)) << ::testing::PrintToString(name);
  }
  EXPECT_EQ(filesInCache(), names.size());
}

TEST_F(LiveSharedThumbnailsTest, AVeryLongPathHasOneToo) {
  // A name cannot be told otherwise to the kernel than from its folder.
  FileURL deep = folder.url();
  while (deep.path().size() < 3500) deep = deep.appending(std::string(200, '%'));
  std::filesystem::create_directories(deep.path());
  const FileURL url = deep.appending("a.png");
  std::filesystem::rename(shot("b.png").path(), url.path());
  keep(url);
  EXPECT_TRUE(InGio(url).isValid);
  EXPECT_EQ(sizeFound(url), QSize(128, 72));
}

TEST_F(LiveSharedThumbnailsTest, OursSaysAllThatTheStandardAsksFor) {
  const FileURL url = shot("a b.png");
  keep(url);
  struct stat status {};
  ASSERT_EQ(::stat(url.c_str(), &status), 0);
  const PngTexts expected{{"Thumb::URI", "file://" + folder.path() + "/a%20b.png"},
                          {"Thumb::MTime", std::to_string(status.st_mtim.tv_sec)},
                          {"Thumb::Size", std::to_string(status.st_size)},
                          {"Thumb::Mimetype", "image/png"},
                          {"Thumb::Image::Width", "640"},
                          {"Thumb::Image::Height", "360"},
                          {"Software", "Quillmere"}};
  const std::string file = readBytes(place(url));
  EXPECT_EQ(readPngTexts(file), expected);
  const QImage kept(place(url).displayPath());
  EXPECT_EQ(kept.size(), QSize(128, 72));
  EXPECT_EQ(kept.pixelColor(10, 36), QColor(Qt::red));
  EXPECT_EQ(kept.pixelColor(118, 36), QColor(Qt::blue));
}

TEST_F(LiveSharedThumbnailsTest, TheKindOfThePictureIsThatOfItsBytes) {
  const FileURL url = folder.file("a.png");
  ASSERT_TRUE(picture(640, 360).save(url.displayPath(), "JPEG"));
  setModified(url, kLongAgo);
  keep(url);
  EXPECT_EQ(readPngTexts(readBytes(place(url)))["Thumb::Mimetype"], "image/jpeg");
}

TEST_F(LiveSharedThumbnailsTest, FilesAndFoldersAreThePersonsAlone) {
  const FileURL url = shot("a.png");
  keep(url);
  EXPECT_EQ(modeOf(cache), 0700u);
  EXPECT_EQ(modeOf(cache.appending("normal")), 0700u);
  EXPECT_EQ(modeOf(place(url)), 0600u);
  EXPECT_EQ(namesIn(cache.appending("normal")).size(), 1u) << "nothing unfinished";
  EXPECT_EQ(namesIn(cache), std::vector<std::string>{"normal"});
}

TEST_F(LiveSharedThumbnailsTest, EachSizeHasAFolder) {
  EXPECT_EQ(thumbnails.side(1), 128);
  EXPECT_EQ(thumbnails.side(128), 128);
  EXPECT_EQ(thumbnails.side(129), 256);
  EXPECT_EQ(thumbnails.side(512), 512);
  EXPECT_EQ(thumbnails.side(1024), 1024);
  EXPECT_EQ(thumbnails.side(1025), std::nullopt);
  const FileURL url = shot("a.png", 2000, 1000);
  const std::pair<const char*, int> sizes[] = {{"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};
  for (const auto& [name, side] : sizes) {
    keep(url, side);
    EXPECT_EQ(QImage(place(url, name).displayPath()).size(), QSize(side, side / 2));
  }
}

TEST_F(LiveSharedThumbnailsTest, ASmallPictureIsKeptAsItIs) {
  const FileURL url = shot("a.png", 100, 50);
  keep(url);
  EXPECT_EQ(QImage(place(url).displayPath()).size(), QSize(100, 50));
  EXPECT_TRUE(InGio(url).isValid);
  EXPECT_EQ(sizeFound(url, 1024), QSize(100, 50)) << "larger there is none";
}

TEST_F(LiveSharedThumbnailsTest, ClearPartsStayClear) {
  const FileURL url = folder.file("a.png");
  QImage clear(640, 360, QImage::Format_ARGB32);
  clear.fill(qRgba(200, 100, 50, 128));
  ASSERT_TRUE(clear.save(url.displayPath(), "PNG"));
  setModified(url, kLongAgo);
  keep(url);
  const auto found = thumbnails.find(url, 128);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->pixelColor(5, 5).alpha(), 128);
  EXPECT_NEAR(found->pixelColor(5, 5).red(), 200, 2);
}

// --- What is not kept ---

TEST_F(LiveSharedThumbnailsTest, AThumbnailOfNoSizeOfTheCacheIsNotKept) {
  const FileURL url = shot("a.png");
  keep(url, 100);
  keep(url, 200);
  EXPECT_EQ(filesInCache(), 0u);
}

TEST_F(LiveSharedThumbnailsTest, AFileThatChangedSinceItWasReadHasNone) {
  const FileURL url = shot("a.png");
  const auto seen = fileStatus(url);
  const QImage thumbnail = ImageFile::thumbnail(url, 128);
  setModified(url, kLongAgo + 0.5);
  thumbnails.keep(url, *seen, thumbnail);
  EXPECT_EQ(filesInCache(), 0u);
  std::filesystem::remove(url.path());
  thumbnails.keep(url, *seen, thumbnail);
  EXPECT_EQ(filesInCache(), 0u) << "nor one that has gone";
}

TEST_F(LiveSharedThumbnailsTest, AFileThatMayBeWrittenAgainInItsSecondHasNone) {
  const FileURL url = shot("a.png");
  now = kLongAgo + 0.7;
  keep(url);
  EXPECT_EQ(filesInCache(), 0u);
  now = kLongAgo + 1;
  keep(url);
  EXPECT_EQ(filesInCache(), 1u);
}

TEST_F(LiveSharedThumbnailsTest, ThumbnailsHaveNoThumbnails) {
  const FileURL normal = cache.appending("normal");
  std::filesystem::create_directories(normal.path());
  const FileURL link = folder.file("link");
  ASSERT_EQ(::symlink(normal.c_str(), link.c_str()), 0);
  for (const FileURL& url : {normal.appending("a.png"), link.appending("b.png")}) {
    std::filesystem::rename(shot("c.png").path(), url.path());
    keep(url);
    EXPECT_FALSE(std::filesystem::exists(place(url).path())) << url.path();
    madeByAnother(url, textsFor(url));
    EXPECT_EQ(sizeFound(url), QSize()) << url.path();
  }
}

TEST_F(LiveSharedThumbnailsTest, WhatAnotherProgramMadeStays) {
  const FileURL url = shot("a.png");
  const FileURL thumbnail = madeByAnother(url, textsFor(url));
  const std::string before = readBytes(thumbnail);
  keep(url);
  EXPECT_EQ(readBytes(thumbnail), before);
  const FileURL other = shot("b.png");
  madeByAnother(other, textsFor(other), "large", 256);
  keep(other);
  EXPECT_FALSE(std::filesystem::exists(place(other).path())) << "a larger one serves as well";
}

TEST_F(LiveSharedThumbnailsTest, WhatIsNoLongerTrueIsReplaced) {
  const FileURL url = shot("a.png");
  PngTexts texts = textsFor(url);
  texts["Thumb::MTime"] = "1";
  madeByAnother(url, texts);
  EXPECT_FALSE(InGio(url).isValid);
  keep(url);
  EXPECT_TRUE(InGio(url).isValid);
  EXPECT_EQ(sizeFound(url), QSize(128, 72));
}

TEST_F(LiveSharedThumbnailsTest, ACacheThatCannotBeWrittenCostsTheThumbnailOnly) {
  const FileURL url = shot("a.png");
  writeFile(cache, "a file where the folder should be");
  keep(url);
  EXPECT_EQ(sizeFound(url), QSize());
  thumbnails.forget(url);
  EXPECT_EQ(readBytes(cache), "a file where the folder should be");
  std::filesystem::remove(cache.path());
  LiveSharedThumbnails nowhere(FileURL::fromPath("/dev/full/thumbnails"), testing::decodedPictures(),
                               [this] { return now; });
  nowhere.keep(url, *fileStatus(url), ImageFile::thumbnail(url, 128));
  EXPECT_EQ(nowhere.find(url, 128), std::nullopt);
}

TEST_F(LiveSharedThumbnailsTest, AFullDiskCostsTheThumbnailOnly) {
  const FileURL url = shot("a.png");
  const FileURL disk = folder.file("disk");
  std::filesystem::create_directory(disk.path());
  QImage noise(128, 72, QImage::Format_RGB32);
  uint32_t state = 1;
  for (int y = 0; y < noise.height(); ++y) {
    for (int x = 0; x < noise.width(); ++x) noise.setPixel(x, y, state = state * 1664525 + 1013904223);
  }
  // Room for the folders and less than a thumbnail of pixels that no encoder makes smaller.
  const std::string failure = testing::failureWithPrivateMounts([&]() -> std::string {
    MUST(::mount("none", disk.c_str(), "tmpfs", 0, "size=8k") == 0);
    LiveSharedThumbnails full(disk.appending("thumbnails"), testing::decodedPictures(), [this] { return now; });
    full.keep(url, *fileStatus(url), noise);
    MUST(std::filesystem::is_empty(disk.appending("thumbnails/normal").path()));
    MUST(!full.find(url, 128));
    MUST(::umount(disk.c_str()) == 0);
    full.keep(url, *fileStatus(url), noise);
    MUST(full.find(url, 128));
    return {};
  });
  EXPECT_EQ(failure, "");
}

// --- As we see those of other programs ---

TEST_F(LiveSharedThumbnailsTest, AnothersThumbnailIsTakenAndTheFileNotOpened) {
  const FileURL url = shot("a.png");
  madeByAnother(url, textsFor(url));
  // The kernel tells of every opening.
  const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  ASSERT_GE(::inotify_add_watch(watch, url.c_str(), IN_OPEN | IN_ACCESS), 0);
  EXPECT_EQ(sizeFound(url), kAnothers);
  char event[256];
  EXPECT_LT(::read(watch, event, sizeof event), 0);
  ::close(watch);
}

TEST_F(LiveSharedThumbnailsTest, ItTakesTheSmallestThatHasThePixels) {
  const FileURL url = shot("a.png");
  madeByAnother(url, textsFor(url));
  EXPECT_EQ(sizeFound(url, 100), QSize(100, 100));
  EXPECT_EQ(sizeFound(url, 129), QSize());
  madeByAnother(url, textsFor(url), "x-large", 512);
  EXPECT_EQ(sizeFound(url, 129), QSize(129, 129));
  EXPECT_EQ(sizeFound(url, 128), kAnothers);
  EXPECT_EQ(sizeFound(url, 513), QSize());
}

TEST_F(LiveSharedThumbnailsTest, TextsMayBeCompressedAsQtDoes) {
  const FileURL url = shot("a.png");
  QImage image = picture(128, 128);
  for (const auto& [keyword, text] : textsFor(url)) {
    image.setText(QString::fromStdString(keyword), QString::fromStdString(text));
  }
  std::filesystem::create_directories(cache.appending("normal").path());
  ASSERT_TRUE(image.save(place(url).displayPath(), "PNG"));
  EXPECT_EQ(sizeFound(url), kAnothers);
}

TEST_F(LiveSharedThumbnailsTest, TheDateMayHaveAFraction) {
  const FileURL url = shot("a.png");
  const std::string seconds = textsFor(url)["Thumb::MTime"];
  const std::pair<const char*, bool> fractions[] = {
      {".250000", true}, {".25", true},      {".000000", true}, {".250000000", true}, {".250000001", false},
      {".26", false},    {".2500x0", false}, {".", false},      {"0", false},         {" ", false}};
  for (const auto& [fraction, isRight] : fractions) {
    PngTexts texts = textsFor(url);
    texts["Thumb::MTime"] = seconds + fraction;
    madeByAnother(url, texts);
    EXPECT_EQ(sizeFound(url), isRight ? kAnothers : QSize()) << fraction;
  }
}

TEST_F(LiveSharedThumbnailsTest, WithoutASizeTheDateSuffices) {
  const FileURL url = shot("a.png");
  PngTexts texts = textsFor(url);
  texts.erase("Thumb::Size");
  madeByAnother(url, texts);
  EXPECT_EQ(sizeFound(url), kAnothers);
}

TEST_F(LiveSharedThumbnailsTest, OneThatIsNotOfThisFileAsItIsNowIsNotTaken) {
  const FileURL url = shot("a.png");
  const std::pair<const char*, const char*> wrong[] = {{"Thumb::URI", "file:///another.png"},
                                                       {"Thumb::URI", ""},
                                                       {"Thumb::MTime", "1678307201"},
                                                       {"Thumb::MTime", ""},
                                                       {"Thumb::Size", "1"}};
  for (const auto& [keyword, text] : wrong) {
    PngTexts texts = textsFor(url);
    texts[keyword] = text;
    madeByAnother(url, texts);
    EXPECT_EQ(sizeFound(url), QSize()) << keyword << " " << text;
    texts.erase(keyword);
    madeByAnother(url, texts);
    EXPECT_EQ(sizeFound(url), std::string_view(keyword) == "Thumb::Size" ? kAnothers : QSize()) << keyword;
  }
  madeByAnother(url, {});
  EXPECT_EQ(sizeFound(url), QSize());
}

TEST_F(LiveSharedThumbnailsTest, AFileThatChangedHasNone) {
  const FileURL url = shot("a.png");
  keep(url);
  ASSERT_EQ(sizeFound(url), QSize(128, 72));
  setModified(url, kLongAgo + 1);
  EXPECT_EQ(sizeFound(url), QSize());
  setModified(url, kLongAgo);
  ASSERT_EQ(sizeFound(url), QSize(128, 72));
  testing::appendToFile(url, "more");
  setModified(url, kLongAgo);
  EXPECT_EQ(sizeFound(url), QSize()) << "replaced within its second";
}

TEST_F(LiveSharedThumbnailsTest, WhatTookThePlaceOfTheFileHasNone) {
  const FileURL url = shot("a.png");
  madeByAnother(url, textsFor(url));
  std::filesystem::remove(url.path());
  EXPECT_EQ(sizeFound(url), QSize());
  ASSERT_EQ(::mkfifo(url.c_str(), 0600), 0);
  setModified(url, kLongAgo);
  EXPECT_EQ(sizeFound(url), QSize());
}

TEST_F(LiveSharedThumbnailsTest, OneThatEndsEarlyIsNotTaken) {
  const FileURL url = shot("a.png");
  const FileURL thumbnail = madeByAnother(url, textsFor(url));
  const std::string whole = readBytes(thumbnail);
  ASSERT_EQ(sizeFound(url), kAnothers);
  for (size_t length = 0; length < whole.size(); ++length) {
    writeFile(thumbnail, whole.substr(0, length));
    ASSERT_EQ(sizeFound(url), QSize()) << length;
  }
  // With the end of a whole one, too.
  writeFile(thumbnail, whole.substr(0, whole.size() - 60) + whole.substr(whole.size() - 12));
  EXPECT_EQ(sizeFound(url), QSize());
}

TEST_F(LiveSharedThumbnailsTest, OneThatIsTooLargeIsNotTaken) {
  const FileURL url = shot("a.png");
  const FileURL thumbnail = madeByAnother(url, textsFor(url), "normal", 256);
  EXPECT_EQ(sizeFound(url), kAnothers) << "twice what its folder has";
  madeByAnother(url, textsFor(url), "normal", 257);
  EXPECT_EQ(sizeFound(url), QSize());

  std::string bomb = asPng(picture(128, 128), textsFor(url));
  bomb.replace(16, 8, std::string("\0\0\xFF\xFF\0\0\xFF\xFF", 8));
  writeFile(thumbnail, bomb);
  EXPECT_EQ(sizeFound(url), QSize());

  ASSERT_EQ(::truncate(thumbnail.c_str(), int64_t{1} << 30), 0);
  EXPECT_EQ(sizeFound(url), QSize());
}

TEST_F(LiveSharedThumbnailsTest, WhatIsNoRegularPngIsNotTaken) {
  const FileURL url = shot("a.png");
  const FileURL thumbnail = madeByAnother(url, textsFor(url));
  const FileURL target = folder.file("target.png");
  std::filesystem::rename(thumbnail.path(), target.path());
  ASSERT_EQ(::symlink(target.c_str(), thumbnail.c_str()), 0);
  EXPECT_EQ(sizeFound(url), QSize()) << "a link";
  std::filesystem::remove(thumbnail.path());
  const FileURL pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  ASSERT_EQ(::symlink(pipe.c_str(), thumbnail.c_str()), 0);
  EXPECT_EQ(sizeFound(url), QSize()) << "a link to a pipe";
  std::filesystem::remove(thumbnail.path());
  ASSERT_EQ(::mkfifo(thumbnail.c_str(), 0600), 0);
  EXPECT_EQ(sizeFound(url), QSize()) << "a pipe";
  std::filesystem::remove(thumbnail.path());
  ASSERT_TRUE(picture(128, 128).save(thumbnail.displayPath(), "JPEG"));
  EXPECT_EQ(sizeFound(url), QSize()) << "a picture of another kind";
}

TEST_F(LiveSharedThumbnailsTest, BytesOfAnyKindAreNoThumbnail) {
  const FileURL url = shot("a.png");
  const FileURL thumbnail = madeByAnother(url, textsFor(url));
  const std::string whole = readBytes(thumbnail);
  for (size_t at = 0; at < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(~damaged[at]);
    writeFile(thumbnail, damaged);
    const QSize size = sizeFound(url);
    ASSERT_TRUE(size.width() <= 128 && size.height() <= 128) << at;
  }
}

// --- Files that leave ---

TEST_F(LiveSharedThumbnailsTest, OursGoWithTheFile) {
  const FileURL url = shot("a.png");
  const FileURL other = shot("b.png");
  keep(url, 128);
  keep(url, 256);
  keep(other);
  writeFile(place(url).parent().appending(place(url).lastPathComponent() + ".quillmere"), "cut off");
  std::filesystem::remove(url.path());
  thumbnails.forget(url);
  EXPECT_EQ(filesInCache(), 1u);
  EXPECT_TRUE(InGio(other).isValid);
}

TEST_F(LiveSharedThumbnailsTest, ThoseOfOtherProgramsStay) {
  const FileURL url = shot("a.png");
  madeByAnother(url, textsFor(url));
  std::filesystem::remove(url.path());
  thumbnails.forget(url);
  EXPECT_EQ(filesInCache(), 1u);
}

TEST_F(LiveSharedThumbnailsTest, WhatIsTrueOfTheFileThatIsThereStays) {
  const FileURL url = shot("a.png");
  keep(url);
  thumbnails.forget(url);
  EXPECT_EQ(filesInCache(), 1u);
  setModified(url, kLongAgo + 1);
  thumbnails.forget(url);
  EXPECT_EQ(filesInCache(), 0u);
}

}  // namespace
}  // namespace quillmere
