#include "pixels/Downscaler.h"

#include <QtGui/QColorSpace>
#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

constexpr size_t kChannels = ScalingSteps::kChannels;

/// Rounding must not leave a colour brighter than its alpha.
void boundByAlpha(QRgb* row, int width) {
  for (int x = 0; x < width; ++x) {
    const int alpha = qAlpha(row[x]);
    row[x] =
        qRgba(std::min(qRed(row[x]), alpha), std::min(qGreen(row[x]), alpha), std::min(qBlue(row[x]), alpha), alpha);
  }
}

void makeOpaque(QRgb* row, int width) {
  for (int x = 0; x < width; ++x) row[x] |= 0xFF000000;
}

}  // namespace

QSize Downscaler::fitting(QSize size, int maxPixels) {
  const int longest = std::max(size.width(), size.height());
  if (longest <= maxPixels) return size;
  const auto shortened = [&](int side) {
    return std::max(1, static_cast<int>(std::lround(static_cast<double>(side) * maxPixels / longest)));
  };
  return {shortened(size.width()), shortened(size.height())};
}

QImage Downscaler::scaled(const QImage& image, QSize size) {
  if (image.isNull()) return {};
  const bool isReady = image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32 ||
                       image.format() == QImage::Format_ARGB32_Premultiplied;
  const QImage rows =
      isReady ? image : image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (rows.isNull()) return {};
  QImage result;
  if (size == rows.size()) {
    result = rows.hasAlphaChannel() ? rows.convertToFormat(QImage::Format_ARGB32_Premultiplied) : rows;
  } else {
    Downscaler scaler(rows.size(), size, rows.format());
    std::vector<const QRgb*> some;
    for (int y = 0; y < rows.height();) {
      some.clear();
      for (int i = scaler.rowsWanted(); i > 0; --i) {
        some.push_back(reinterpret_cast<const QRgb*>(rows.constScanLine(y++)));
      }
      scaler.add(some.data());
    }
    result = scaler.result();
  }
  result.setColorSpace(image.colorSpace());
  return result;
}

Downscaler::Downscaler(QSize from, QSize to, QImage::Format format, const ScalingSteps& steps)
    : across_(ScalingWeights::of(from.width(), to.width())),
      down_(ScalingWeights::of(from.height(), to.height())),
      steps_(steps),
      result_(to, format == QImage::Format_RGB32 ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied),
      sums_(kChannels * static_cast<size_t>(from.width())),
      stride_(kChannels * static_cast<size_t>(across_.cells + across_.taps)),
      levels_(stride_ * static_cast<size_t>(down_.taps)),
      reached_(static_cast<size_t>(down_.taps)),
      mixed_(stride_) {
  if (format != QImage::Format_ARGB32) return;
  const auto width = static_cast<size_t>(from.width());
  premultiplied_.resize(width * static_cast<size_t>(down_.cell));
  for (int i = 0; i < down_.cell; ++i) {
    premultipliedRows_.push_back(premultiplied_.data() + width * static_cast<size_t>(i));
  }
}

int Downscaler::rowsWanted() const {
  return cellRows_ < down_.cells ? down_.pixelsIn(cellRows_) : 0;
}

void Downscaler::add(const QRgb* const* rows) {
  const int count = rowsWanted();
  addCells(premultiplied_.empty() ? rows : premultiplied(rows, count), count);
  ++cellRows_;
  makeRows();
}

const QRgb* const* Downscaler::premultiplied(const QRgb* const* rows, int count) {
  const auto width = static_cast<size_t>(across_.from);
  for (int i = 0; i < count; ++i) {
    steps_.premultiply(rows[i], width, premultiplied_.data() + width * static_cast<size_t>(i));
  }
  return premultipliedRows_.data();
}

void Downscaler::addCells(const QRgb* const* rows, int count) {
  const auto width = static_cast<size_t>(across_.from);
  int16_t* result = levels(cellRows_);
  if (across_.cell == 1 && count == 1) {
    steps_.widen(rows[0], width, result);
    return;
  }
  steps_.sumRows(rows, count, width, sums_.data());
  const auto whole = static_cast<size_t>(across_.cells - 1);
  steps_.average(sums_.data(), across_.cell, count, whole, result);
  steps_.average(sums_.data() + kChannels * whole * static_cast<size_t>(across_.cell),
                 across_.pixelsIn(across_.cells - 1), count, 1, result + kChannels * whole);
}

/// Makes the new rows whose last row of cells is there.
void Downscaler::makeRows() {
  while (newRows_ < down_.to && !result_.isNull()) {
    const int first = down_.firsts[static_cast<size_t>(newRows_)];
    if (std::min(first + down_.taps, down_.cells) > cellRows_) return;
    // Beyond the last row of cells the weights are zero.
    for (int tap = 0; tap < down_.taps; ++tap) reached_[static_cast<size_t>(tap)] = levels(first + tap);
    steps_.mixRows(reached_.data(), down_.weightsOf(newRows_), down_.taps, static_cast<size_t>(across_.cells),
                   mixed_.data());
    auto* row = reinterpret_cast<QRgb*>(result_.scanLine(newRows_));
    steps_.mixPixels(mixed_.data(), across_, row);
    const bool hasAlpha = result_.format() != QImage::Format_RGB32;
    hasAlpha ? boundByAlpha(row, across_.to) : makeOpaque(row, across_.to);
    ++newRows_;
  }
}

int16_t* Downscaler::levels(int cellRow) {
  return levels_.data() + stride_ * static_cast<size_t>(cellRow % down_.taps);
}

}  // namespace quillmere
