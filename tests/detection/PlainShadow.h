#pragma once

#include <cmath>

#include "support/PlainEdges.h"

namespace quillmere::plain {

enum Side { kLeft, kTop, kRight, kBottom };

/// The mean of the middle half.
inline double middleMean(std::vector<int> values) {
  std::sort(values.begin(), values.end());
  const size_t n = values.size();
  const size_t begin = n / 4;
  const size_t end = std::max(begin + 1, 3 * n / 4);
  double sum = 0;
  for (size_t i = begin; i < end; ++i) sum += values[i];
  return sum / static_cast<double>(end - begin);
}

inline std::optional<std::vector<double>> brightnessProfile(int side, const Gray& gray, const QRectF& frame,
                                                            int64_t depth) {
  const bool isUpright = side == kLeft || side == kRight;
  const double length = isUpright ? frame.height() : frame.width();
  const auto corner = static_cast<int64_t>(isUpright ? frame.top() : frame.left());
  const int64_t start = corner + static_cast<int64_t>(0.08 * length);
  const auto count = static_cast<int64_t>(0.84 * length);
  if (count < 24) return std::nullopt;
  const int64_t stride = std::max<int64_t>(count, 512) / 512;
  std::vector<std::vector<int>> lines;
  for (int64_t offset = 0; offset < count; offset += stride) {
    const int64_t p = start + offset;
    std::vector<int>& line = lines.emplace_back();
    for (int64_t d = 0; d < depth; ++d) {
      int64_t x = p;
      int64_t y = p;
      if (side == kLeft) x = static_cast<int64_t>(frame.left()) - 1 - d;
      if (side == kTop) y = static_cast<int64_t>(frame.top()) - 1 - d;
      if (side == kRight) x = static_cast<int64_t>(frame.right()) + d;
      if (side == kBottom) y = static_cast<int64_t>(frame.bottom()) + d;
      if (x < 0 || y < 0 || x >= gray.width || y >= gray.height) return std::nullopt;
      line.push_back(gray.at(x, y));
    }
  }
  if (lines.size() < 16) return std::nullopt;
  std::vector<double> profile;
  for (int64_t d = 0; d < depth; ++d) {
    std::vector<int> values;
    for (const auto& line : lines) values.push_back(line[d]);
    profile.push_back(middleMean(values));
  }
  return profile;
}

inline std::optional<double> median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t n = values.size();
  if (n == 0) return std::nullopt;
  return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

inline double robustSigma(const std::vector<double>& values) {
  if (values.empty()) return 0;
  const double middle = *median(values);
  std::vector<double> distances;
  for (const double value : values) distances.push_back(std::abs(value - middle));
  return 1.4826 * *median(distances);
}

enum class Seen { extent, clear, unreadable };
struct FallOff {
  Seen seen = Seen::unreadable;
  int64_t extent = 0;
  double nearResidual = 0;
};

inline FallOff fallOff(const std::vector<double>& p) {
  const auto n = static_cast<int64_t>(p.size());
  if (n < 34) return {};
  std::vector<double> residual;
  for (int64_t i = 0; i <= n - 20; ++i) {
    const double meanX = static_cast<double>(i) + 11.5;
    double meanY = 0;
    for (int64_t j = i + 4; j <= i + 19; ++j) meanY += p[j];
    meanY /= 16;
    double products = 0;
    double squares = 0;
    for (int64_t j = i + 4; j <= i + 19; ++j) {
      const double across = static_cast<double>(j) - meanX;
      products += across * (p[j] - meanY);
      squares += across * across;
    }
    const double slope = squares > 0 ? products / squares : 0;
    residual.push_back(slope * static_cast<double>(i) + (meanY - slope * meanX) - p[i]);
  }
  double sigma = robustSigma({residual.begin() + (n - 20) / 2, residual.end()});
  double threshold = 0.5;
  if (sigma <= 0.05) {
    sigma = 0.05;
  } else {
    threshold = std::max(3 * sigma, 0.5);
  }
  FallOff result{Seen::unreadable, 0, residual[1]};
  if (threshold >= 6.0) return result;
  int64_t i = n - 20;
  while (i >= 2) {
    if (residual[i] < threshold || residual[i - 1] < threshold) {
      --i;
    } else if (0.8 * residual[i] <= residual[std::max<int64_t>(i - 8, 1)]) {
      result.seen = Seen::extent;
      result.extent = i + 1;
      return result;
    } else {
      while (i >= 2 && residual[i] >= threshold) --i;
    }
  }
  if (sigma <= 2.0) result.seen = Seen::clear;
  return result;
}

enum class Reading { shadow, clear, unreadable };
struct SideReading {
  Reading reading = Reading::unreadable;
  int64_t extent = 0;
  bool isClipped = false;
};

inline int64_t room(int side, const Gray& gray, const QRectF& frame) {
  if (side == kLeft) return static_cast<int64_t>(frame.left());
  if (side == kTop) return static_cast<int64_t>(frame.top());
  if (side == kRight) return gray.width - static_cast<int64_t>(frame.right());
  return gray.height - static_cast<int64_t>(frame.bottom());
}

inline SideReading sideReading(int side, const Gray& gray, const QRectF& frame) {
  const int64_t space = room(side, gray, frame);
  auto budget = static_cast<int64_t>(std::round(0.15 * static_cast<double>(std::min(gray.width, gray.height))));
  if (budget < 60) budget = 60;
  if (budget > 320) budget = 320;
  int64_t depth = std::min(budget, space);
  if (depth < 14) return {};
  auto profile = brightnessProfile(side, gray, frame, depth);
  if (!profile) return {};
  int64_t reach = depth;
  SideReading last;
  for (int pass = 1; pass <= 3 && profile; ++pass) {
    const FallOff seen = fallOff(*profile);
    if (seen.seen == Seen::unreadable) return {};
    if (seen.seen == Seen::clear) {
      last = {Reading::clear, 0, false};
      if (reach >= space || seen.nearResidual <= 2.0) return last;
    } else {
      last = {Reading::shadow, seen.extent, false};
      if (0.4 * static_cast<double>(depth) >= static_cast<double>(seen.extent)) return last;
      if (reach >= space) return {Reading::shadow, seen.extent, seen.extent >= depth - 4};
    }
    reach = 2 * depth;
    depth = std::min(reach, space);
    profile = brightnessProfile(side, gray, frame, depth);
  }
  return last;
}

enum class Source { measured, estimated, none };
struct Margin {
  std::array<double, 4> sides{};
  Source source = Source::none;
};

inline Margin marginOf(const Gray& gray, const QRectF& frame, std::optional<double> scale) {
  const double left = std::max(std::floor(frame.left()), 0.0);
  const double top = std::max(std::floor(frame.top()), 0.0);
  const double right = std::min(std::ceil(frame.right()), static_cast<double>(gray.width));
  const double bottom = std::min(std::ceil(frame.bottom()), static_cast<double>(gray.height));
  if (right - left < 32 || bottom - top < 32) return {};
  const QRectF r(left, top, right - left, bottom - top);
  const std::array<double, 4> weight{1.0, 0.69, 1.0, 1.27};
  std::array<SideReading, 4> readings;
  std::array<std::optional<double>, 4> normalized;
  std::vector<double> values;
  int readable = 0;
  for (int side = 0; side < 4; ++side) {
    readings[side] = sideReading(side, gray, r);
    if (readings[side].reading != Reading::unreadable) ++readable;
    if (readings[side].reading != Reading::shadow || readings[side].isClipped) continue;
    normalized[side] = static_cast<double>(readings[side].extent) / weight[side];
    values.push_back(*normalized[side]);
  }
  const auto first = median(values);
  values.clear();
  for (auto& value : normalized) {
    if (value && (*value < 0.5 * *first || *value > 2.0 * *first)) value.reset();
    if (value) values.push_back(*value);
  }
  const auto consensus = median(values);
  if (!consensus && readable >= 2) return {};
  Margin result{{}, consensus ? Source::measured : Source::estimated};
  const double unscaled = consensus ? *consensus : 0.025 * static_cast<double>(std::min(gray.width, gray.height));
  const double base = scale ? *scale * 22.5 : unscaled;
  bool isAny = false;
  for (int side = 0; side < 4; ++side) {
    double margin = std::round(base * weight[side]);
    if (readings[side].reading == Reading::clear && !consensus) margin = 0;
    if (normalized[side] && !scale) margin = std::max(margin, static_cast<double>(readings[side].extent));
    result.sides[side] = std::min(margin, static_cast<double>(room(side, gray, r)));
    isAny = isAny || result.sides[side] > 0;
  }
  return isAny ? result : Margin{};
}

}  // namespace quillmere::plain
