#pragma once

#include <QtCore/QRectF>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

/// The detector's rules once more, one pixel at a time and without any haste: what the program's code must agree with.
namespace quillmere::plain {

struct Gray {
  int64_t width = 0;
  int64_t height = 0;
  std::vector<int> levels;

  Gray(int64_t w, int64_t h, int level = 0) : width(w), height(h), levels(static_cast<size_t>(w * h), level) {}
  int& at(int64_t x, int64_t y) { return levels[y * width + x]; }
  int at(int64_t x, int64_t y) const { return levels[y * width + x]; }
};

inline int luminance(int red, int green, int blue) {
  return (27 * red + 92 * green + 9 * blue + 64) / 128;
}

struct Edges {
  int64_t width = 0;
  int64_t height = 0;
  std::vector<bool> vertical;
  std::vector<bool> horizontal;
  std::vector<int> columnCounts;
  std::vector<int> rowCounts;

  bool isVertical(int64_t x, int64_t y) const { return vertical[y * width + x]; }
  bool isHorizontal(int64_t x, int64_t y) const { return horizontal[y * width + x]; }
};

inline Edges edges(const Gray& gray, int threshold) {
  const auto size = static_cast<size_t>(gray.width * gray.height);
  Edges result{gray.width,
               gray.height,
               std::vector<bool>(size),
               std::vector<bool>(size),
               std::vector<int>(static_cast<size_t>(gray.width)),
               std::vector<int>(static_cast<size_t>(gray.height))};
  for (int64_t y = 1; y <= gray.height - 2; ++y) {
    for (int64_t x = 1; x <= gray.width - 2; ++x) {
      if (std::abs(gray.at(x + 1, y) - gray.at(x - 1, y)) > threshold) {
        result.vertical[y * gray.width + x] = true;
        ++result.columnCounts[x];
      }
      if (std::abs(gray.at(x, y + 1) - gray.at(x, y - 1)) > threshold) {
        result.horizontal[y * gray.width + x] = true;
        ++result.rowCounts[y];
      }
    }
  }
  return result;
}

inline std::vector<int> linePeaks(const std::vector<int>& counts, int64_t lengthAcross) {
  const auto extent = static_cast<int>(counts.size());
  const auto minimum = static_cast<int>(0.04 * static_cast<double>(lengthAcross));
  std::vector<int> peaks;
  for (int i = 3; i <= extent - 4; ++i) {
    const bool isPeak = counts[i] >= counts[i - 1] && counts[i] >= counts[i + 1];
    if (isPeak && counts[i] >= minimum) peaks.push_back(i);
  }
  std::vector<int> kept;
  // The highest that is left, the first of equals, until none is.
  while (!peaks.empty() && kept.size() < 56) {
    size_t best = 0;
    for (size_t i = 1; i < peaks.size(); ++i) {
      if (counts[peaks[i]] > counts[peaks[best]]) best = i;
    }
    const int peak = peaks[best];
    peaks.erase(peaks.begin() + static_cast<ptrdiff_t>(best));
    bool isNear = false;
    for (const int other : kept) isNear = isNear || std::abs(peak - other) < 6;
    if (!isNear) kept.push_back(peak);
  }
  std::sort(kept.begin(), kept.end());
  return kept;
}

using Profile = std::vector<int>;

inline Profile columnProfile(const Edges& edges, int64_t x) {
  Profile profile{0};
  for (int64_t y = 0; y < edges.height; ++y) {
    bool isHit = false;
    for (int64_t at = std::max<int64_t>(x - 2, 1); at <= std::min(x + 2, edges.width - 2); ++at) {
      isHit = isHit || edges.isVertical(at, y);
    }
    profile.push_back(profile.back() + (isHit ? 1 : 0));
  }
  return profile;
}

inline Profile rowProfile(const Edges& edges, int64_t y) {
  Profile profile{0};
  for (int64_t x = 0; x < edges.width; ++x) {
    bool isHit = false;
    for (int64_t at = std::max<int64_t>(y - 2, 1); at <= std::min(y + 2, edges.height - 2); ++at) {
      isHit = isHit || edges.isHorizontal(x, at);
    }
    profile.push_back(profile.back() + (isHit ? 1 : 0));
  }
  return profile;
}

struct Candidate {
  std::array<double, 4> support{};
  QRectF frame;
  bool hasButtons = false;
  bool matchesRectangle = false;

  double strength() const { return (support[0] + support[1] + support[2] + support[3]) / 4; }
  double weakest() const { return *std::min_element(support.begin(), support.end()); }
};

inline std::vector<Candidate> candidates(const Edges& edges) {
  const std::vector<int> columns = linePeaks(edges.columnCounts, edges.height);
  const std::vector<int> rows = linePeaks(edges.rowCounts, edges.width);
  if (columns.size() < 2 || rows.size() < 2) return {};
  std::vector<Profile> columnProfiles;
  std::vector<Profile> rowProfiles;
  for (const int x : columns) columnProfiles.push_back(columnProfile(edges, x));
  for (const int y : rows) rowProfiles.push_back(rowProfile(edges, y));
  const int64_t minWidth = edges.width < 1440 ? 120 : edges.width / 12;
  const int64_t minHeight = edges.height < 1200 ? 100 : edges.height / 12;

  std::vector<Candidate> result;
  for (size_t l = 0; l < columns.size(); ++l) {
    for (size_t r = l + 1; r < columns.size(); ++r) {
      for (size_t t = 0; t < rows.size(); ++t) {
        for (size_t b = t + 1; b < rows.size(); ++b) {
          const int x1 = columns[l], x2 = columns[r], y1 = rows[t], y2 = rows[b];
          const double w = x2 - x1, h = y2 - y1;
          if (x2 - x1 < minWidth || y2 - y1 < minHeight) continue;
          if (w / h <= 0.2 || w / h >= 6.0) continue;
          Candidate one;
          one.support = {(columnProfiles[l][y2] - columnProfiles[l][y1]) / h,
                         (columnProfiles[r][y2] - columnProfiles[r][y1]) / h,
                         (rowProfiles[t][x2] - rowProfiles[t][x1]) / w, (rowProfiles[b][x2] - rowProfiles[b][x1]) / w};
          int drawn = 0;
          for (const double side : one.support) drawn += side >= 0.75 ? 1 : 0;
          if (drawn < 3 || one.weakest() < 0.35) continue;
          one.frame = QRectF(x1, y1, w, h);
          result.push_back(one);
        }
      }
    }
  }
  return result;
}

/// The part of `a`'s outline inside `b` that is drawn as long runs.
inline std::optional<double> outlineScore(const QRectF& a, const QRectF& b, const Edges& edges) {
  const double left = b.left() + 8, top = b.top() + 8, right = b.right() - 8, bottom = b.bottom() - 8;
  if (right - left <= 0 || bottom - top <= 0) return std::nullopt;
  int64_t solid = 0;
  int64_t total = 0;
  const auto walk = [&](const Profile& profile, int64_t from, int64_t to) {
    if (from >= to) return;
    std::vector<int64_t> runs{0};
    for (int64_t at = from; at < to; ++at) {
      if (profile[at + 1] > profile[at]) {
        ++runs.back();
      } else {
        runs.push_back(0);
      }
    }
    for (const int64_t run : runs) solid += run >= 16 ? run : 0;
    total += to - from;
  };
  for (const double side : {a.left(), a.right()}) {
    const auto x = static_cast<int64_t>(side);
    const auto at = static_cast<double>(x);
    if (at <= left || at >= right || x < 1 || x >= edges.width - 1) continue;
    walk(columnProfile(edges, x), static_cast<int64_t>(std::max(a.top(), top)),
         static_cast<int64_t>(std::min(a.bottom(), bottom)));
  }
  for (const double side : {a.top(), a.bottom()}) {
    const auto y = static_cast<int64_t>(side);
    const auto at = static_cast<double>(y);
    if (at <= top || at >= bottom || y < 1 || y >= edges.height - 1) continue;
    walk(rowProfile(edges, y), static_cast<int64_t>(std::max(a.left(), left)),
         static_cast<int64_t>(std::min(a.right(), right)));
  }
  if (total < 24) return std::nullopt;
  return static_cast<double>(solid) / static_cast<double>(total);
}

}  // namespace quillmere::plain
