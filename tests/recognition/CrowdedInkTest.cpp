#include "recognition/CrowdedInk.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr QSize kSize(1200, 600);

std::vector<InkPiece> pieces(const std::vector<QRect>& boxes) {
  std::vector<InkPiece> result;
  for (const QRect& box : boxes) result.emplace_back().box = box;
  return result;
}
/// What is left of them.
std::vector<QRect> kept(const std::vector<QRect>& boxes, size_t most = 30000) {
  auto all = pieces(boxes);
  dropCrowded(all, kSize, most);
  std::vector<QRect> left;
  for (const InkPiece& piece : all) left.push_back(piece.box);
  return left;
}
/// Specks of a photograph: no two rows of them are alike.
std::vector<QRect> grain(const QRect& place) {
  std::vector<QRect> specks;
  for (int y = place.top(), shift = 0; y <= place.bottom(); y += 2, shift = (shift + 3) % 7) {
    for (int x = place.left() + shift; x <= place.right(); x += 7) specks.emplace_back(x, y, 1, 1);
  }
  return specks;
}
std::vector<QRect> letters(const QPoint& first, int count) {
  std::vector<QRect> boxes;
  for (int i = 0; i < count; ++i) boxes.emplace_back(first.x() + 9 * i, first.y(), 6, 10);
  return boxes;
}
std::vector<QRect> together(std::vector<QRect> a, const std::vector<QRect>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST(CrowdedInk, GrainIsDroppedAndTheTextBesideItIsKept) {
  const auto text = letters({20, 100}, 10);
  EXPECT_EQ(kept(together(text, grain({140, 40, 200, 200}))), text);
}

TEST(CrowdedInk, WhatStandsInGrainIsDroppedWithIt) {
  EXPECT_EQ(kept(together(grain({140, 40, 200, 200}), letters({200, 100}, 3))), std::vector<QRect>());
}

TEST(CrowdedInk, DotsOfTextAreKept) {
  std::vector<QRect> leaders;
  for (int line = 0; line < 6; ++line) {
    for (int x = 20; x < 300; x += 3) leaders.emplace_back(x, 40 + 11 * line, 1, 1);
  }
  EXPECT_EQ(kept(leaders), leaders);
}

TEST(CrowdedInk, OfTooManyTheMostCrowdedPlacesAreDropped) {
  std::vector<QRect> crowd;
  for (int y = 256; y < 384; y += 6) {
    for (int x = 512; x < 640; x += 6) crowd.emplace_back(x, y, 5, 5);
  }
  const auto text = letters({20, 100}, 40);
  EXPECT_EQ(kept(together(text, crowd), 100), text);
  EXPECT_EQ(kept(together(text, crowd), 1000).size(), text.size() + crowd.size());
  EXPECT_LE(kept(text, 10).size(), 10u);
}

}  // namespace
}  // namespace quillmere
