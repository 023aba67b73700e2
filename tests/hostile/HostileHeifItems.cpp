#include "hostile/HeifParts.h"
#include "hostile/HostilePictures.h"

// Whose items are too many, of other sizes than they say, or lead astray.
namespace quillmere::testing {
namespace {

using namespace heif;

HostilePicture row(const std::string& name, const std::string& outcome, std::function<std::string()> bytes,
                   int64_t megabytes = 48) {
  return {"heif-" + name, std::move(bytes), outcome, 0, megabytes};
}

Coded usual() {
  static const Coded once = coded(64, 64);
  return once;
}
/// One picture with one more property.
std::string with(const std::string& property) {
  const Coded one = usual();
  return fileOf(
      {.items = {{.properties = {1, 2, 3}, .data = one.data}}, .properties = {one.settings, said(64, 64), property}});
}
/// Says one size and is of another.
std::string lying(size_t saidWidth, size_t saidHeight, int width, int height) {
  const Coded one = coded(width, height, true);
  return fileOf(
      {.items = {{.properties = {1, 2}, .data = one.data}}, .properties = {one.settings, said(saidWidth, saidHeight)}});
}
/// A grid and its tiles of 64 pixels each way, `count` of them; `width` and `height` are those that the file says.
std::string tiled(size_t count, size_t width, size_t height, const std::string& data, size_t step = 1) {
  const Coded one = usual();
  return fileOf({.items = {{.type = "grid", .properties = {3}, .data = data},
                           {.properties = {1, 2}, .data = one.data, .repeated = step == 0 ? 1 : count}},
                 .properties = {one.settings, said(64, 64), said(width, height)},
                 .references = reference("dimg", 1, 2, count, step)});
}
std::string beside(const Item& item, const std::string& references) {
  const Coded one = usual();
  return fileOf({.items = {{.properties = {1, 2}, .data = one.data}, item},
                 .properties = {one.settings, said(64, 64)},
                 .references = references});
}
/// Made of something that is no picture: an item that is of another kind, or that there is not.
std::string madeOf(const std::string& type, const std::string& data, size_t part) {
  return fileOf({.items = {{.type = type, .properties = {1}, .data = data}, {.type = "Exif", .data = "x"}},
                 .properties = {said(64, 64)},
                 .references = reference("dimg", 1, part, 1)});
}
/// Of 64 by 64, with one part in its corner.
std::string overlay() {
  return std::string(10, '\0') + short16(64) + short16(64) + short16(0) + short16(0);
}
std::string profile(std::string_view type, const std::string& bytes) {
  return box("colr", std::string(type) + bytes);
}

}  // namespace

std::vector<HostilePicture> hostileHeifItems() {
  const std::string kNone = "none, damaged, damaged";
  const std::string kFine = "64x64, 64x64, whole";
  const std::string kHeaderOnly = "64x64, damaged, damaged";
  const std::string kTooCostly = "none, tooCostly, tooCostly";
  return {
      row("made-of-parts", kFine, [] { return with(box("free", "")); }),
      row("coded-larger-than-it-says", kHeaderOnly, [] { return lying(64, 64, 512, 512); }),
      row(
          "coded-far-larger-than-it-says", kHeaderOnly, [] { return lying(64, 64, 4096, 4096); }, 160),
      row("coded-smaller-than-it-says", "512x512, damaged, damaged", [] { return lying(512, 512, 64, 64); }),
      row("tiles", "128x128, 128x128, whole", [] { return tiled(4, 128, 128, grid(2, 2, 128, 128)); }),
      row("tiles-too-few", "128x128, damaged, damaged", [] { return tiled(3, 128, 128, grid(2, 2, 128, 128)); }),
      row("tiles-none", "128x128, damaged, damaged", [] { return tiled(0, 128, 128, grid(2, 2, 128, 128)); }),
      row("tiles-too-many", "128x128, damaged, damaged", [] { return tiled(9, 128, 128, grid(2, 2, 128, 128)); }),
      row("tiles-of-another-size-than-said", kHeaderOnly, [] { return tiled(4, 64, 64, grid(2, 2, 128, 128)); }),
      row("tiles-larger-than-said", kHeaderOnly, [] { return tiled(4, 64, 64, grid(2, 2, 30'000, 30'000)); }),
      row("tiles-smaller-than-said", "2000x2000, 2000x2000, whole",
          [] { return tiled(4, 2'000, 2'000, grid(2, 2, 2'000, 2'000)); }),
      row("tiles-of-gigapixels", kNone, [] { return tiled(4, 60'000, 60'000, grid(2, 2, 60'000, 60'000)); }),
      row("tiles-cut", "128x128, damaged, damaged",
          [] { return tiled(4, 128, 128, grid(2, 2, 128, 128).substr(0, 5)); }),
      row(
          "tiles-of-four-thousand", kTooCostly, [] { return tiled(4096, 4096, 4096, grid(64, 64, 4096, 4096)); }, 400),
      row(
          "tiles-of-65535", kTooCostly, [] { return tiled(65'535, 16'384, 16'384, grid(256, 256, 16'384, 16'384)); },
          400),
      row(
          "tiles-all-the-same", kTooCostly, [] { return tiled(65'535, 1'024, 1'024, grid(256, 256, 1'024, 1'024), 0); },
          400),
      row("tile-that-is-missing", kNone,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.type = "grid", .properties = {3}, .data = grid(1, 2, 128, 64)},
                                     {.properties = {1, 2}, .data = one.data}},
                           .properties = {one.settings, said(64, 64), said(128, 64)},
                           .references = reference("dimg", 1, 2, 2, 60)});
          }),
      row("grid-of-grids", kTooCostly,
          [] {
            const Coded one = usual();
            Parts parts{.items = {}, .properties = {one.settings, said(64, 64)}};
            for (size_t level = 1; level <= 12; ++level) {
              parts.items.push_back({.type = "grid", .properties = {2}, .data = grid(2, 2, 64, 64)});
              parts.references += reference("dimg", level, level + 1, 4, 0);
            }
            parts.items.push_back({.properties = {1, 2}, .data = one.data});
            return fileOf(parts);
          }),
      row("same-as-what-is-no-picture", kNone, [] { return madeOf("iden", "", 2); }),
      row("same-as-nothing", kNone, [] { return madeOf("iden", "", 9); }),
      row("overlay-of-what-is-no-picture", kNone, [] { return madeOf("iovl", overlay(), 2); }),
      row("overlay-of-nothing", kNone, [] { return madeOf("iovl", overlay(), 9); }),
      row("grid-of-what-is-no-picture", kNone, [] { return madeOf("grid", grid(1, 1, 64, 64), 2); }),
      row("same-as-itself", kNone,
          [] {
            return fileOf({.items = {{.type = "iden", .properties = {1}}},
                           .properties = {said(64, 64)},
                           .references = reference("dimg", 1, 1, 1)});
          }),
      row(
          "thirty-thousand-items", kNone,
          [] {
            const Coded one = usual();
            return fileOf(
                {.items = {{.properties = {1, 2}, .data = one.data}, {.type = "Exif", .data = "x", .repeated = 30'000}},
                 .properties = {one.settings, said(64, 64)}});
          },
          80),
      row(
          "hundred-thousand-items", kNone,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.properties = {1, 2}, .data = one.data},
                                     {.type = "Exif", .data = "x", .repeated = 100'000}},
                           .properties = {one.settings, said(64, 64)},
                           .isLong = true});
          },
          160),
      row("thousand-turns", kFine,
          [] {
            const Coded one = usual();
            Parts parts{.items = {{.properties = {1, 2}, .data = one.data}},
                        .properties = {one.settings, said(64, 64)}};
            for (int i = 0; i < 100; ++i) parts.items[0].properties.push_back(3);
            parts.properties.push_back(turned(1));
            return fileOf(parts);
          }),
      row("turned", kFine, [] { return with(turned(1)); }),
      row("turned-by-more-than-there-is", kFine, [] { return with(turned('\xFF')); }),
      row("property-that-is-none", kNone,
          [] {
            const Coded one = usual();
            return fileOf(
                {.items = {{.properties = {1, 2, 99}, .data = one.data}}, .properties = {one.settings, said(64, 64)}});
          }),
      row("cut-to-nothing", kNone, [] { return with(box("clap", std::string(32, '\0'))); }),
      row("cut-beyond-its-sides", "9000x9000, damaged, damaged",
          [] {
            return with(box("clap", number32(9000) + number32(1) + number32(9000) + number32(1) +
                                        std::string("\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\1", 16)));
          }),
      row("cut-of-ones", kNone, [] { return with(box("clap", std::string(32, '\xFF'))); }),
      row("cut-to-16", "16x16, 16x16, whole",
          [] {
            return with(box("clap", number32(16) + number32(1) + number32(16) + number32(1) +
                                        std::string("\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\1", 16)));
          }),
      row("mirrored", kFine, [] { return with(box("imir", "\1")); }),
      row("profile-of-no-colours", kFine, [] { return with(profile("prof", std::string(3000, 'p'))); }),
      row("profile-empty", kFine, [] { return with(profile("prof", "")); }),
      row(
          "profile-of-twenty-megabytes", kTooCostly,
          [] { return with(profile("prof", std::string(20'000'000, '\0'))); }, 90),
      row("profile-of-another-kind", kNone, [] { return with(profile("evil", std::string(64, 'p'))); }),
      row("profile-of-numbers-that-are-none", kFine, [] { return with(profile("nclx", std::string(7, '\xFF'))); }),
      row("profile-of-numbers-cut", kNone, [] { return with(profile("nclx", "1")); }),
      row("two-sizes", "8000x8000, damaged, damaged", [] { return with(said(8000, 8000)); }),
      row("size-missing", kNone,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.properties = {1}, .data = one.data}}, .properties = {one.settings}});
          }),
      row("settings-missing", kNone,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.properties = {1}, .data = one.data}}, .properties = {said(64, 64)}});
          }),
      row("data-empty", kHeaderOnly,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.properties = {1, 2}}}, .properties = {one.settings, said(64, 64)}});
          }),
      row("camera-data-of-a-directory-in-itself", kFine,
          [] {
            return beside({.type = "Exif", .data = std::string("\0\0\0\0MM\0*\0\0\0\0\0\1", 14)},
                          reference("cdsc", 2, 1, 1));
          }),
      row("camera-data-far-behind", kFine,
          [] {
            return beside({.type = "Exif", .data = std::string("\xFF\xFF\xFF\xF0MM\0*", 8)},
                          reference("cdsc", 2, 1, 1));
          }),
      row("camera-data-cut", kFine, [] { return beside({.type = "Exif", .data = "\1"}, reference("cdsc", 2, 1, 1)); }),
      row(
          "camera-data-of-twenty-megabytes", kFine,
          [] { return beside({.type = "Exif", .data = std::string(20'000'000, '\0')}, reference("cdsc", 2, 1, 1)); },
          90),
      row("thumbnail-of-itself", kNone,
          [] { return beside({.type = "Exif", .data = "x"}, reference("thmb", 1, 1, 1)); }),
      row("alpha-of-itself", kNone, [] { return beside({.type = "Exif", .data = "x"}, reference("auxl", 1, 1, 1)); }),
      row("alpha-of-another-size", kFine,
          [] {
            const Coded one = usual();
            const Coded other = coded(16, 16);
            return fileOf(
                {.items = {{.properties = {1, 2}, .data = one.data}, {.properties = {3, 4, 5}, .data = other.data}},
                 .properties = {one.settings, said(64, 64), other.settings, said(16, 16),
                                fullBox("auxC", std::string("urn:mpeg:hevc:2015:auxid:1\0", 27))},
                 .references = reference("auxl", 2, 1, 1)});
          }),
      row("overlay-far-away", kFine,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.type = "iovl",
                                      .properties = {2},
                                      .data = std::string("\0\1\0\0\0\0\0\0\0\0", 10) + number32(64) + number32(64) +
                                              number32(0x7FFFFFFF) + number32(0x80000000)},
                                     {.properties = {1, 2}, .data = one.data}},
                           .properties = {one.settings, said(64, 64)},
                           .references = reference("dimg", 1, 2, 1)});
          }),
      row("overlay-on-gigapixels", kHeaderOnly,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.type = "iovl",
                                      .properties = {2},
                                      .data = std::string("\0\1\0\0\0\0\0\0\0\0", 10) + number32(30'000) +
                                              number32(30'000) + number32(0) + number32(0)},
                                     {.properties = {1, 2}, .data = one.data}},
                           .properties = {one.settings, said(64, 64)},
                           .references = reference("dimg", 1, 2, 1)});
          }),
      row("overlay-of-its-size", kFine,
          [] {
            const Coded one = usual();
            return fileOf({.items = {{.type = "iovl",
                                      .properties = {2},
                                      .data = std::string("\0\0\0\0\0\0\0\0\0\0", 10) + short16(64) + short16(64) +
                                              short16(0) + short16(0)},
                                     {.properties = {1, 2}, .data = one.data}},
                           .properties = {one.settings, said(64, 64)},
                           .references = reference("dimg", 1, 2, 1)});
          }),
  };
}

}  // namespace quillmere::testing
