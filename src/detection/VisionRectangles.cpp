#include "detection/VisionRectangles.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace quillmere::WindowDetector {
namespace {

constexpr double kLongestReducedSide = 640;
constexpr double kLeastAspect = 0.1;
constexpr double kLeastSide = 0.05;
constexpr double kLeastConfidence = 0.1;
constexpr size_t kMostRectangles = 30;
constexpr double kCornerTolerance = 30;
/// How far a polygon may run from its contour, as a part of the contour's length.
constexpr double kPolygonTolerance = 0.02;

using Polygon = std::vector<cv::Point>;

bool hasRightCorners(const Polygon& polygon) {
  for (size_t i = 0; i < 4; ++i) {
    const cv::Point2d to = polygon[(i + 1) % 4] - polygon[i];
    const cv::Point2d from = polygon[(i + 3) % 4] - polygon[i];
    const double cosine = to.dot(from) / (cv::norm(to) * cv::norm(from));
    const double degrees = std::acos(std::clamp(cosine, -1.0, 1.0)) * 180 / CV_PI;
    if (std::abs(degrees - 90) > kCornerTolerance) return false;
  }
  return true;
}

bool isRectangle(const Polygon& polygon, double leastSide) {
  if (polygon.size() != 4 || !cv::isContourConvex(polygon) || !hasRightCorners(polygon)) return false;
  const cv::Rect box = cv::boundingRect(polygon);
  const double shorter = std::min(box.width, box.height);
  const double longer = std::max(box.width, box.height);
  // How much of its box a four-sided shape fills tells how surely it is a rectangle.
  return shorter >= leastSide && shorter / longer >= kLeastAspect &&
         cv::contourArea(polygon) >= kLeastConfidence * box.area();
}

std::vector<QRectF> rectanglesOf(const GrayImage& gray) {
  const cv::Mat whole(static_cast<int>(gray.height()), static_cast<int>(gray.width()), CV_8UC1,
                      const_cast<uint8_t*>(gray.row(0)));
  const double scale = std::min(1.0, kLongestReducedSide / std::max(whole.cols, whole.rows));
  cv::Mat reduced;
  cv::resize(whole, reduced, {}, scale, scale, cv::INTER_AREA);
  cv::Mat edges;
  cv::Canny(reduced, edges, 20, 60);
  cv::dilate(edges, edges, {});
  std::vector<Polygon> contours;
  cv::findContours(edges, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);

  const double leastSide = kLeastSide * std::min(reduced.cols, reduced.rows);
  std::vector<cv::Rect> boxes;
  for (const Polygon& contour : contours) {
    Polygon polygon;
    cv::approxPolyDP(contour, polygon, kPolygonTolerance * cv::arcLength(contour, true), true);
    if (isRectangle(polygon, leastSide)) boxes.push_back(cv::boundingRect(polygon));
  }
  std::stable_sort(boxes.begin(), boxes.end(), [](const auto& a, const auto& b) { return a.area() > b.area(); });
  if (boxes.size() > kMostRectangles) boxes.resize(kMostRectangles);
  std::vector<QRectF> result;
  for (const cv::Rect& box : boxes) {
    result.emplace_back(box.x / scale, box.y / scale, box.width / scale, box.height / scale);
  }
  return result;
}

}  // namespace

std::vector<QRectF> visionRectangles(const GrayImage& gray) {
  try {
    return rectanglesOf(gray);
  } catch (const cv::Exception&) {
    // Such as of a picture so narrow that nothing of it is left at the reduced size.
    return {};
  }
}

}  // namespace quillmere::WindowDetector
