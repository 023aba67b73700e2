#include "formats/Pictures.h"
#include "hostile/HostilePictures.h"

namespace quillmere::testing {
namespace {

HostilePicture row(const std::string& name, const std::string& outcome, std::function<std::string()> bytes,
                   int64_t megabytes = 32) {
  return {"jpeg-" + name, std::move(bytes), outcome, 0, megabytes};
}

std::string short16(size_t number) {
  return {static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
}
std::string segment(char marker, const std::string& content) {
  return std::string("\xFF") + marker + short16(content.size() + 2) + content;
}

struct Frame {
  char marker = '\xC0';
  size_t width = 64;
  size_t height = 64;
  int precision = 8;
  int components = 3;
  char sampling = '\x11';
};

std::string frame(const Frame& frame) {
  std::string content = static_cast<char>(frame.precision) + short16(frame.height) + short16(frame.width) +
                        static_cast<char>(frame.components);
  for (int i = 1; i <= frame.components; ++i) content += {static_cast<char>(i), frame.sampling, '\0'};
  return segment(frame.marker, content);
}

const std::string kStart = "\xFF\xD8";
const std::string kEnd = "\xFF\xD9";
const std::string kSteps = segment('\xDB', '\0' + std::string(64, '\1'));
/// One code of one bit, for nothing.
const std::string kCodes = segment('\xC4', '\0' + std::string(1, '\1') + std::string(15, '\0') + '\0') +
                           segment('\xC4', '\x10' + std::string(1, '\1') + std::string(15, '\0') + '\0');

/// Of the components from `first` on, with the steps of a progressive picture.
std::string scan(int first, int components, char from = 0, char to = 63, char bits = 0) {
  std::string content(1, static_cast<char>(components));
  for (int i = first; i < first + components; ++i) content += {static_cast<char>(i), '\0'};
  return segment('\xDA', content + from + to + bits);
}

/// Gray all over: each block is two bits.
std::string flat(const Frame& form, size_t bytes = 400, const std::string& before = {}) {
  return kStart + before + kSteps + frame(form) + kCodes + scan(1, form.components) + std::string(bytes, '\0') + kEnd;
}

/// What says that four components are inks.
std::string inks(char transform) {
  return segment('\xEE', std::string("Adobe\0d\0\0\0\0", 11) + transform);
}

/// Goes over its picture so many times.
std::string scanned(const Frame& form, int scans, size_t bytes = 30) {
  const bool isProgressive = form.marker == '\xC2';
  std::string file = kStart + kSteps + frame(form) + kCodes;
  if (isProgressive) file += scan(1, form.components, 0, 0) + std::string(bytes, '\0');
  for (int i = isProgressive ? 1 : 0; i < scans; ++i) {
    file += (isProgressive ? scan(1 + i % 3, 1, 1, 5) : scan(1 + i % 3, 1)) + std::string(bytes, '\0');
  }
  return file + kEnd;
}

std::string usual() {
  return encoded(redAndBlue(64, 64), "JPEG");
}
HostilePicture truncated(const std::string& where, size_t place, const std::string& outcome) {
  return row("ends-" + where, outcome, [place] { return usual().substr(0, place); });
}
/// Up to the first of these bytes, and so many more.
HostilePicture truncatedAt(const std::string& where, const std::string& bytes, size_t more,
                           const std::string& outcome) {
  return row("ends-" + where, outcome, [=] {
    const std::string file = usual();
    return file.substr(0, file.find(bytes) + more);
  });
}

std::string repeated(size_t count, const std::string& part) {
  std::string result;
  for (size_t i = 0; i < count; ++i) result += part;
  return result;
}

HostilePicture sparse(const std::string& name, const std::string& outcome, std::function<std::string()> bytes) {
  HostilePicture picture = row(name, outcome, std::move(bytes));
  picture.sparseSize = int64_t{1} << 30;
  return picture;
}

}  // namespace

std::vector<HostilePicture> hostileJpegs() {
  const std::string kNone = "none, damaged, damaged";
  const std::string kFine = "64x64, 64x64, whole";
  const std::string kTooCostly = "none, tooCostly, tooCostly";
  const std::string kHeaderOnly = "64x64, damaged, damaged";
  const Frame progressive{.marker = '\xC2'};
  const auto camera = [](const std::string& tiff) { return [tiff] { return withExif(usual(), tiff); }; };
  return {
      truncated("behind-its-start", 2, kNone),
      truncated("in-its-name", 8, kNone),
      truncatedAt("in-steps", "\xFF\xDB", 20, kNone),
      truncatedAt("in-frame", "\xFF\xC0", 8, kNone),
      truncatedAt("behind-frame", "\xFF\xC0", 19, kNone),
      truncatedAt("in-codes", "\xFF\xC4", 12, kNone),
      truncatedAt("in-head-of-scan", "\xFF\xDA", 6, kNone),
      truncatedAt("behind-head-of-scan", "\xFF\xDA", 14, "64x64, 64x64, damaged"),
      truncatedAt("in-data", "\xFF\xDA", 300, "64x64, 64x64, damaged"),
      row("ends-before-its-end", "64x64, 64x64, damaged",
          [] {
            const std::string file = usual();
            return file.substr(0, file.size() - 2);
          }),

      row("segment-of-no-length", kNone, [] { return kStart + std::string("\xFF\xE0\0\0", 4) + usual().substr(2); }),
      row("segment-of-one-byte", kNone, [] { return kStart + std::string("\xFF\xE0\0\1", 4) + usual().substr(2); }),
      row("segment-beyond-the-end", kNone,
          [] { return kStart + std::string("\xFF\xE0\xFF\xFF", 4) + usual().substr(2, 200); }),
      row("no-width", kNone, [] { return flat({.width = 0}); }),
      row("no-height", kNone, [] { return flat({.height = 0}); }),
      row("promises-more-than-it-holds", kNone, [] { return flat({.width = 65'500, .height = 65'500}); }),
      row("of-four-gigapixels", kTooCostly, [] { return flat({.width = 65'500, .height = 65'500}, 4'300'000); }),
      row("no-components", kNone, [] { return flat({.components = 0}); }),
      row("five-components", kNone, [] { return flat({.components = 5}); }),
      row("255-components", kNone, [] { return flat({.components = 255}); }),
      row("four-components", kFine, [] { return flat({.components = 4}); }),
      row("precision-12", kNone, [] { return flat({.precision = 12}); }),
      row("precision-0", kNone, [] { return flat({.precision = 0}); }),
      row("sampled-never", kNone, [] { return flat({.sampling = '\0'}); }),
      row("sampled-five-times", kNone, [] { return flat({.sampling = '\x55'}); }),
      row("sampled-four-times", kHeaderOnly, [] { return flat({.sampling = '\x44'}); }),
      row("without-steps", kHeaderOnly,
          [] { return kStart + frame({}) + kCodes + scan(1, 3) + std::string(99, '\0') + kEnd; }),
      row("without-codes", kFine,
          [] { return kStart + kSteps + frame({}) + scan(1, 3) + std::string(99, '\0') + kEnd; }),
      row("codes-of-more-than-there-are", kNone,
          [] {
            return kStart + kSteps + frame({}) +
                   segment('\xC4', '\0' + std::string(16, '\xFF') + std::string(200, '\1')) + scan(1, 3) +
                   std::string(99, '\0') + kEnd;
          }),
      row("two-frames", kNone,
          [] {
            return kStart + kSteps + frame({}) + frame({.width = 60'000, .height = 60'000}) + kCodes + scan(1, 3) +
                   std::string(99, '\0') + kEnd;
          }),
      row("frame-behind-its-scan", kNone, [] { return kStart + kSteps + kCodes + scan(1, 3) + frame({}) + kEnd; }),
      row("without-loss", kNone, [] { return flat({.marker = '\xC3'}); }),
      row("arithmetic", kFine, [] { return flat({.marker = '\xC9'}); }),
      row("arithmetic-and-progressive", kHeaderOnly, [] { return scanned({.marker = '\xCA'}, 12); }),
      row("two-components", kHeaderOnly, [] { return flat({.components = 2}); }),
      row("one-component", kFine, [] { return flat({.components = 1}); }),
      row("inks", kFine, [] { return flat({.components = 4}, 400, inks(0)); }),
      row("inks-of-light-and-colour", kFine, [] { return flat({.components = 4}, 400, inks(2)); }),
      row("inks-of-no-kind", kFine, [] { return flat({.components = 4}, 400, inks('\xFF')); }),
      row("height-that-comes-later", kNone,
          [] {
            return flat({.height = 0}).substr(0, flat({.height = 0}).size() - 2) + segment('\xDC', short16(64)) + kEnd;
          }),
      row("steps-of-nothing", kFine,
          [] { return kStart + segment('\xDB', '\0' + std::string(64, '\0')) + flat({}).substr(2); }),
      row("steps-of-16-bits", kFine,
          [] { return kStart + segment('\xDB', '\x10' + std::string(128, '\xFF')) + flat({}).substr(2); }),
      row("steps-of-a-table-that-is-none", kNone,
          [] { return kStart + segment('\xDB', '\x07' + std::string(64, '\1')) + flat({}).substr(2); }),
      row("wide-as-no-screen", kTooCostly, [] { return flat({.width = 65'500, .height = 8}, 100'000'000); }),
      row("name-with-a-picture-of-255", kFine,
          [] { return kStart + segment('\xE0', std::string("JFIF\0\1\1\0\0\1\0\1\xFF\xFF", 14)) + usual().substr(2); }),
      row("hierarchical", kNone, [] { return flat({.marker = '\xC5'}); }),
      row("scan-of-no-component", kNone, [] { return kStart + kSteps + frame({}) + kCodes + scan(1, 0) + kEnd; }),
      row("scan-of-other-components", kNone, [] { return kStart + kSteps + frame({}) + kCodes + scan(9, 3) + kEnd; }),
      row("steps-of-scans-that-are-none", kHeaderOnly,
          [progressive] { return kStart + kSteps + frame(progressive) + kCodes + scan(1, 1, 40, 3, '\x77') + kEnd; }),

      row("hundred-scans", kFine, [progressive] { return scanned(progressive, 100); }),
      row("hundred-and-one-scans", kTooCostly, [progressive] { return scanned(progressive, 101); }),
      row("four-hundred-scans-of-256-megapixels", kTooCostly,
          [] { return scanned({.marker = '\xC2', .width = 16'000, .height = 16'000}, 400, 1600); }),
      row("ninety-scans-of-64-megapixels", "8000x8000, tooCostly, tooCostly",
          [] { return scanned({.marker = '\xC2', .width = 8'000, .height = 8'000}, 90, 1600); }),
      row("four-hundred-scans-in-sequence", kTooCostly, [] { return scanned({}, 400); }),
      row("coefficients-of-two-gigabytes", kTooCostly,
          [] { return scanned({.marker = '\xC2', .width = 15'000, .height = 15'000}, 5, 100'000); }),

      row("comment-of-twenty-megabytes", kTooCostly,
          [] { return kStart + repeated(310, segment('\xFE', std::string(65'000, 'c'))) + usual().substr(2); }),
      row("comments-behind-the-scan", kTooCostly,
          [] {
            return flat({}).substr(0, flat({}).size() - 2) + repeated(310, segment('\xFE', std::string(65'000, 'c'))) +
                   kEnd;
          }),
      row(
          "hundred-thousand-comments", kFine,
          [] { return kStart + repeated(100'000, segment('\xFE', "k: v")) + usual().substr(2); }, 64),
      row("megabyte-of-filling", kFine, [] { return kStart + std::string(1 << 20, '\xFF') + usual().substr(2); }),
      row("restarts-alone", kFine,
          [] { return flat({}, 0).substr(0, flat({}, 0).size() - 2) + repeated(1000, "\xFF\xD3") + kEnd; }),
      row("restart-after-each-block", kFine, [] { return flat({}, 400, segment('\xDD', short16(1))); }),
      row(
          "profile-of-255-parts", kFine,
          [] {
            return kStart +
                   repeated(255, segment('\xE2', std::string("ICC_PROFILE\0\1\xFF", 14) + std::string(60'000, 'p'))) +
                   usual().substr(2);
          },
          80),
      row("profile-of-part-0", kFine,
          [] {
            return kStart + segment('\xE2', std::string("ICC_PROFILE\0\0\0", 14) + "profile") + usual().substr(2);
          }),

      row("profile-of-which-parts-are-missing", kFine,
          [] {
            return kStart + segment('\xE2', std::string("ICC_PROFILE\0\2\3", 14) + std::string(3000, 'p')) +
                   usual().substr(2);
          }),
      row("restarts-in-another-order", kFine,
          [] {
            return flat({}, 20, segment('\xDD', short16(8)))
                       .substr(0, flat({}, 20, segment('\xDD', short16(8))).size() - 2) +
                   "\xFF\xD5" + std::string(20, '\0') + "\xFF\xD1" + std::string(20, '\0') + kEnd;
          }),
      row("orientation-0", kFine, [] { return oriented(usual(), 0); }),
      row("orientation-9", kFine, [] { return oriented(usual(), 9); }),
      row("orientation-6", kFine, [] { return oriented(usual(), 6); }),
      row("camera-data-empty", kFine, camera("")),
      row("camera-data-of-a-directory-in-itself", kFine, camera(std::string("MM\0*\0\0\0\0\0\1", 10))),
      row("camera-data-beyond-the-end", kFine, camera(std::string("MM\0*\xFF\xFF\xFF\xF0", 8))),
      row("camera-data-of-65535-entries", kFine,
          camera(std::string("MM\0*\0\0\0\x08\xFF\xFF", 10) + std::string(60'000, '\1'))),
      row("camera-data-whose-next-is-itself", kFine, camera(std::string("MM\0*\0\0\0\x08\0\0\0\0\0\x08", 14))),
      row("picture-in-camera-data", kFine, [] { return withExif(usual(), usual()); }),
      row("much-behind-the-end", kTooCostly, [] { return usual() + std::string(20'000'000, 'x'); }),
      row("some-behind-the-end", "64x64, 64x64, damaged", [] { return usual() + std::string(200'000, 'x'); }),

      sparse("sparse-behind-the-end", kNone, [] { return usual(); }),
      sparse("sparse-data", kNone, [] { return flat({.width = 20'000, .height = 13'000}); }),
      sparse("sparse-behind-its-start", kNone, [] { return kStart + "\xFF\xE0" + short16(40'000); }),
  };
}

std::string longJpeg() {
  return scanned({.marker = '\xC2', .width = 8'000, .height = 8'000}, 60, 1600);
}

}  // namespace quillmere::testing
