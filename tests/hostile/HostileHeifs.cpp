#include "formats/HeifFile.h"
#include "formats/Pictures.h"
#include "hostile/HostilePictures.h"

namespace quillmere::testing {
namespace {

HostilePicture row(const std::string& name, const std::string& outcome, std::function<std::string()> bytes) {
  return {"heif-" + name, std::move(bytes), outcome, 0, 48};
}

std::string usual() {
  static const std::string bytes = encodedHeic(redAndBlue(64, 64), 80).value_or(QByteArray()).toStdString();
  return bytes;
}

std::string box(std::string_view type, const std::string& content) {
  return bigEndian32(static_cast<uint32_t>(content.size() + 8)) + std::string(type) + content;
}
const std::string kType = box("ftyp", "heic" + std::string(4, '\0') + "mif1heic");

/// The four bytes at `offset` behind the first of these letters, with others there.
std::string with(std::string_view letters, size_t offset, std::string_view bytes) {
  std::string file = usual();
  return file.replace(file.find(letters) + offset, bytes.size(), bytes);
}
HostilePicture truncatedAt(const std::string& where, std::string_view letters, size_t more,
                           const std::string& outcome) {
  return row("ends-" + where, outcome, [=] { return usual().substr(0, usual().find(letters) + more); });
}

HostilePicture sparse(const std::string& name, const std::string& outcome, int64_t size) {
  HostilePicture picture = row(name, outcome, [] { return usual(); });
  picture.sparseSize = size;
  picture.mostBytesRead = 2 << 20;
  return picture;
}

}  // namespace

std::vector<HostilePicture> hostileHeifs() {
  const std::string kNone = "none, damaged, damaged";
  const std::string kHeaderOnly = "64x64, damaged, damaged";
  const std::string kNoPicture = "none, noPicture, noPicture";
  return {
      row("whole", "64x64, 64x64, whole", [] { return usual(); }),
      truncatedAt("in-type", "ftyp", 6, kNoPicture),
      truncatedAt("behind-type", "meta", -4, kNone),
      truncatedAt("in-meta", "meta", 60, kNone),
      truncatedAt("in-places", "iloc", 12, kNone),
      truncatedAt("in-properties", "ispe", 8, kNone),
      truncatedAt("before-data", "mdat", 4, kNone),
      truncatedAt("in-data", "mdat", 200, kNone),
      row("of-films", kNoPicture, [] { return with("ftyp", 4, "isom"); }),
      row("of-another-codec", kNone,
          [] { return box("ftyp", "avif" + std::string(4, '\0') + "avifmif1") + usual().substr(24); }),
      row("type-of-no-size", kNone, [] { return with("ftyp", -4, std::string(4, '\0')); }),
      row("type-of-four-gigabytes", kNone, [] { return with("ftyp", -4, std::string(4, '\xFF')); }),
      row("meta-of-no-size", kNone, [] { return with("meta", -4, std::string("\0\0\0\x04", 4)); }),
      row("meta-of-four-gigabytes", kNone, [] { return with("meta", -4, std::string(4, '\xFF')); }),
      row("meta-of-a-large-size", kNone, [] { return with("meta", -4, std::string("\0\0\0\1", 4)); }),
      row("places-beyond-the-end", kNone, [] { return with("iloc", 16, std::string(8, '\x7F')); }),
      row("size-of-nothing", kNone, [] { return with("ispe", 8, std::string(8, '\0')); }),
      row("size-of-gigapixels", "none, tooCostly, tooCostly",
          [] { return with("ispe", 8, std::string("\0\0\x70\0\0\0\x70\0", 8)); }),
      row("size-largest", kNone, [] { return with("ispe", 8, std::string(8, '\xFF')); }),
      row("size-negative", kNone, [] { return with("ispe", 8, std::string("\x80\0\0\0\x80\0\0\0", 8)); }),
      row("decoder-without-settings", "64x64, 64x64, whole", [] { return with("hvcC", 4, std::string(8, '\0')); }),
      row("decoder-of-other-settings", kNone, [] { return with("hvcC", 30, std::string(30, '\xFF')); }),
      row("data-of-zeros", kHeaderOnly, [] { return with("mdat", 4, std::string(400, '\0')); }),
      row("data-of-ones", kHeaderOnly, [] { return with("mdat", 4, std::string(400, '\xFF')); }),
      row("primary-that-is-none", kNone, [] { return with("pitm", 8, std::string("\x7F\x7F", 2)); }),
      row("boxes-in-boxes", kNone,
          [] {
            std::string inner = box("free", "");
            for (int i = 0; i < 2000; ++i) inner = box("moov", inner);
            return kType + box("meta", std::string(4, '\0') + inner);
          }),
      row("hundred-thousand-boxes", kNone,
          [] {
            std::string boxes;
            for (int i = 0; i < 100'000; ++i) boxes += box("free", "");
            return kType + box("meta", std::string(4, '\0') + boxes);
          }),
      row("of-nothing-but-its-type", kNone, [] { return kType; }),
      row("more-behind-the-end", "64x64, 64x64, whole",
          [] { return usual() + box("free", std::string(1 << 20, 'x')); }),
      sparse("sparse-of-100-megabytes", kNone, int64_t{100} << 20),
      sparse("sparse-of-a-gigabyte", kNone, int64_t{1} << 30),
  };
}

std::vector<HostilePicture> otherFiles() {
  const auto none = [](const std::string& name, const std::string& bytes) {
    return HostilePicture{name, [bytes] { return bytes + std::string(64, '\0'); }, "none, noPicture, noPicture"};
  };
  HostilePicture empty{"empty", [] { return std::string(); }, "none, noPicture, noPicture"};
  HostilePicture zeros{"sparse-zeros", [] { return std::string(); }, "none, noPicture, noPicture", int64_t{1} << 40};
  zeros.mostBytesRead = 2 << 20;
  HostilePicture text{"two-hundred-megabytes-of-text", [] { return std::string(200'000'000, 't'); },
                      "none, noPicture, noPicture"};
  text.mostBytesRead = 2 << 20;
  return {empty,
          zeros,
          text,
          none("gif", "GIF89a\xFF\xFF\xFF\xFF"),
          none("bmp", "BM\xFF\xFF\xFF\x7F"),
          none("tiff-little", std::string("II*\0\x08\0\0\0", 8)),
          none("tiff-big", std::string("MM\0*\0\0\0\x08", 8)),
          none("webp", std::string("RIFF\xFF\xFF\xFF\x7FWEBPVP8L", 16)),
          none("svg", "<svg width='9e9'><use href='#a'/></svg>"),
          none("pdf", "%PDF-1.7"),
          none("zip", "PK\3\4"),
          none("xpm", "/* XPM */ static char *a[] = {\"99999 99999 1 1\","),
          none("ppm", "P6 99999 99999 255\n"),
          none("ico", std::string("\0\0\1\0\xFF\xFF", 6)),
          none("jpeg-2000", std::string("\0\0\0\x0CjP  \r\n\x87\n", 12)),
          none("film", std::string("\0\0\0\x18"
                                   "ftypmp42",
                                   12)),
          none("program",
               "\x7F"
               "ELF"),
          none("png-of-other-line-ends", "\x89PNG\n\x1A\n"),
          none("mng", "\x8AMNG\r\n\x1A\n")};
}

}  // namespace quillmere::testing
