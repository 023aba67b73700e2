#pragma once

#include <cmath>
#include <random>

#include "support/DrawnPictures.h"

// Pictures by number: of one seed always the same one.
namespace quillmere::pictures {

class RandomPicture {
 public:
  explicit RandomPicture(uint32_t seed) : random_(seed) {}

  int upTo(int most) { return static_cast<int>(random_() % static_cast<uint32_t>(most + 1)); }
  int between(int least, int most) { return least + upTo(most - least); }

  /// Small, often about a word's or a vector's width.
  plain::Gray small() {
    static constexpr std::array kWidths{9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 66, 127, 128, 129, 191, 193};
    plain::Gray gray(upTo(3) == 0 ? between(9, 200) : kWidths[static_cast<size_t>(upTo(15))], between(9, 40));
    const int way = upTo(3);
    if (way == 0) noise(gray, 255);
    if (way == 1) noise(gray, between(1, 40));
    if (way == 2) stripes(gray);
    if (way == 3) std::fill(gray.levels.begin(), gray.levels.end(), upTo(255));
    return gray;
  }

  /// Windows, some over others, with title bars, shadows and noise.
  plain::Gray screen() {
    plain::Gray gray(between(140, 620), between(120, 460), between(40, 240));
    const int slope = upTo(1) * between(1, 12);
    for (int64_t y = 0; y < gray.height; ++y) {
      for (int64_t x = 0; x < gray.width; ++x) set(gray, x, y, gray.at(x, y) + static_cast<int>(x) * slope / 100);
    }
    if (upTo(9) == 0) stripes(gray);
    const int windows = between(1, 6);
    const bool isFaint = upTo(4) == 0;
    for (int i = 0; i < windows; ++i) window(gray, isFaint);
    if (upTo(2) == 0) roughen(gray, between(1, 6));
    return gray;
  }

  void noise(plain::Gray& gray, int most) {
    for (int& level : gray.levels) level = upTo(most);
  }
  void roughen(plain::Gray& gray, int most) {
    for (int& level : gray.levels) level = std::clamp(level + between(-most, most), 0, 255);
  }
  void stripes(plain::Gray& gray) {
    const int period = between(2, 30);
    const bool isUpright = upTo(1) == 0;
    const int dark = upTo(200);
    const int light = dark + between(5, 55);
    for (int64_t y = 0; y < gray.height; ++y) {
      for (int64_t x = 0; x < gray.width; ++x) set(gray, x, y, (isUpright ? x : y) / period % 2 == 0 ? dark : light);
    }
  }
  void window(plain::Gray& gray, bool isFaint) {
    const auto w = static_cast<int>(gray.width);
    const auto h = static_cast<int>(gray.height);
    const int width = between(110, std::max(111, w - 10));
    const int height = between(90, std::max(91, h - 10));
    const int left = between(-8, std::max(1, w - width));
    const int top = between(-8, std::max(1, h - height));
    if (upTo(1) == 0) shadow(gray, left, top, width, height);
    const int background = gray.at(std::clamp(left, 0, w - 1), std::clamp(top, 0, h - 1));
    const int level = isFaint ? background + between(7, 18) : upTo(255);
    fill(gray, left, top, width, height, level);
    if (upTo(1) == 0) outline(gray, QRectF(left - 1, top - 1, width + 1, height + 1), level / 2);
    // Sides that are drawn in part.
    if (upTo(2) == 0) fill(gray, left - 3, top + between(0, height), 8, between(10, height), background);
    if (upTo(3) == 0) fill(gray, left + between(0, width), top + height - 4, between(10, width), 8, background);
    if (upTo(1) == 0) fill(gray, left, top, width, between(16, 40), between(0, 255));
    const int diameter = between(6, 16);
    const int pitch = diameter + between(0, diameter);
    if (upTo(3) != 0) titleBarDots(gray, left + between(3, 20), top + between(2, 16), diameter, pitch, upTo(255));
    for (int line = upTo(4); line > 0; --line) {
      fill(gray, left + 8, top + between(20, height), between(20, width), between(1, 9), between(0, 255));
    }
  }
  void shadow(plain::Gray& gray, int left, int top, int width, int height) {
    const double reach = between(6, 60);
    const double depth = between(2, 90);
    for (int64_t y = 0; y < gray.height; ++y) {
      for (int64_t x = 0; x < gray.width; ++x) {
        const auto beyondX = static_cast<double>(std::max<int64_t>({left - x, x - left - width + 1, 0}));
        const auto beyondY = static_cast<double>(std::max<int64_t>({top - y, y - top - height + 1, 0}));
        const double share = 1 - std::sqrt(beyondX * beyondX + beyondY * beyondY) / reach;
        if (share > 0) set(gray, x, y, gray.at(x, y) - static_cast<int>(depth * share * share));
      }
    }
  }

 private:
  std::mt19937 random_;
};

}  // namespace quillmere::pictures
