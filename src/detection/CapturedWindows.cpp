#include "detection/CapturedWindows.h"

#include <libdeflate.h>
#include <algorithm>
#include <cmath>

#include "detection/OutlineEvidence.h"
#include "detection/RegionPlace.h"

namespace quillmere::CapturedWindows {
namespace {

using Type = WindowStack::Window::Type;

/// Of what a window draws, more than this is no shadow of it; of 255.
constexpr int kOpaque = 250;
/// The file system's clock may tell a little less than the state's.
constexpr double kClockStep = 0.05;  // seconds
/// A size alone tells of what was shown shortly before.
constexpr double kRecent = 10;  // seconds
/// Of two states that fit about as well, in hundredths of what fits, the later one counts.
constexpr int kAbout = 3;
/// With all the places that a part of the screen may have, older states fit by chance.
constexpr int kAboutOfRegion = 35;
constexpr int kHundred = 100;
/// Nothing covers a window of whose outline so much is seen, in hundredths.
constexpr int kWhole = 90;
/// Only so many different states are looked for in a part of the screen.
constexpr size_t kMostRegionStates = 24;

QRect opaqueBox(const QImage& picture) {
  const QRect whole(QPoint(), picture.size());
  if (!picture.hasAlphaChannel()) return whole;
  const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
  QRect box;
  for (int y = 0; y < pixels.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
    int first = 0;
    while (first < pixels.width() && qAlpha(row[first]) < kOpaque) ++first;
    if (first == pixels.width()) continue;
    int last = pixels.width() - 1;
    while (qAlpha(row[last]) < kOpaque) --last;
    box |= QRect(QPoint(first, y), QPoint(last, y));
  }
  return box;
}

bool isPictureOf(const QSize& size, const QRect& window, double scale) {
  const int step = std::max(1, static_cast<int>(std::ceil(scale)));
  const int wider = size.width() - window.width();
  const int higher = size.height() - window.height();
  return wider >= 0 && wider < step && higher >= 0 && higher < step;
}

/// Whether the picture is one of that state's windows.
bool isWindowOf(const QSize& size, const WindowStack& state) {
  return std::any_of(state.windows.begin(), state.windows.end(), [&](const WindowStack::Window& window) {
    return window.type == Type::window &&
           (isPictureOf(size, window.frame, state.scale) || isPictureOf(size, window.client, state.scale) ||
            isPictureOf(size, window.outer, state.scale));
  });
}

KnownWindows oneWindow(const QImage& picture, const QRect& box) {
  KnownWindows known{
      .kind = CaptureKind::window, .size = picture.size(), .checksum = checksum(picture), .windows = {}, .front = 0};
  KnownWindows::Window window{.frame = box};
  const QSize size = picture.size();
  if (box.size() != size) {
    // What is around it in the picture is its shadow and nothing else.
    window.shadow = WindowShadowMargin{static_cast<double>(box.x()), static_cast<double>(box.y()),
                                       static_cast<double>(size.width() - box.x() - box.width()),
                                       static_cast<double>(size.height() - box.y() - box.height()),
                                       WindowShadowMargin::Source::measured};
  }
  known.windows.push_back(window);
  return known;
}

/// A state, and where on its screen the picture would be.
struct Placed {
  const WindowStack* state;
  QPoint origin;
  StackEvidence evidence;
  int score;
  bool isSure = true;
};

/// The one that fits best; of those that fit about as well the latest. They stand oldest first.
const Placed* best(const std::vector<Placed>& all, int about) {
  const auto highest =
      std::max_element(all.begin(), all.end(), [](const Placed& a, const Placed& b) { return a.score < b.score; });
  if (highest == all.end()) return nullptr;
  const int least = highest->score - highest->evidence.hits * about / kHundred;
  const auto latest = std::find_if(all.rbegin(), all.rend(), [&](const Placed& one) { return one.score >= least; });
  return &*latest;
}

std::optional<KnownWindows> confirmed(const QImage& picture, const Placed& placed, CaptureKind kind) {
  KnownWindows known{
      .kind = kind, .size = picture.size(), .checksum = checksum(picture), .windows = {}, .front = std::nullopt};
  const QRect whole(QPoint(), picture.size());
  std::optional<size_t> topmost;
  for (size_t i = 0; i < placed.state->windows.size(); ++i) {
    const OutlineEvidence& evidence = placed.evidence.windows[i];
    const WindowStack::Window& window = placed.state->windows[i];
    if (!evidence.isEnough()) continue;
    if (!evidence.isCovered) {
      const size_t place = known.windows.size();
      const bool isWhole = evidence.hits() * kHundred >= kWhole * evidence.blocks();
      // Of two windows of which one is not known of, neither can be told to lie above.
      if (!placed.state->isPartial) topmost = place;
      if (window.id == placed.state->active && (isWhole || !placed.state->isPartial)) known.front = place;
    }
    known.windows.push_back({window.frame.translated(-placed.origin) & whole, evidence.isCovered, std::nullopt});
  }
  if (!known.front) known.front = topmost;
  return known.windows.empty() ? std::nullopt : std::optional(known);
}

std::vector<const WindowStack*> different(const std::vector<WindowStack>& states, Date closedAt) {
  std::vector<const WindowStack*> result;
  for (const WindowStack& state : states) {
    if (state.since > closedAt + kClockStep) continue;
    if (!result.empty() && result.back()->showsTheSameAs(state)) continue;
    result.push_back(&state);
  }
  return result;
}

/// The places on the state's screen that a picture of that size has for certain.
std::vector<QPoint> wholeOrigins(const WindowStack& state, const QSize& size) {
  std::vector<QPoint> origins;
  if (state.root == size) origins.emplace_back(0, 0);
  for (const QRect& monitor : state.monitors) {
    if (monitor.size() == size && state.root != size) origins.push_back(monitor.topLeft());
  }
  return origins;
}

}  // namespace

uint32_t checksum(const QImage& picture) {
  const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
  uint32_t sum = 0;
  for (int y = 0; y < pixels.height(); ++y) {
    sum = libdeflate_crc32(sum, pixels.constScanLine(y), static_cast<size_t>(pixels.width()) * sizeof(QRgb));
  }
  return sum;
}

std::optional<KnownWindows> resolve(const QImage& picture, const std::vector<WindowStack>& states, Date closedAt) {
  const auto known = different(states, closedAt);
  if (picture.isNull() || known.empty()) return std::nullopt;
  const bool isWhole = std::any_of(known.begin(), known.end(), [&](const WindowStack* state) {
    return !wholeOrigins(*state, picture.size()).empty();
  });
  if (!isWhole) {
    // What a state still showed when the next began.
    const QRect box = opaqueBox(picture);
    for (size_t i = 0; i < known.size(); ++i) {
      const bool isRecent = i + 1 == known.size() || closedAt - known[i + 1]->since <= kRecent;
      if (isRecent && isWindowOf(box.size(), *known[i])) return oneWindow(picture, box);
    }
  }
  // Of a part of the screen the place is sought, and must be told to the pixel.
  const int point = std::max(1, static_cast<int>(std::ceil(known.back()->scale)));
  const EdgeBlocks edges(picture, isWhole ? point : 1);
  std::optional<RegionSearch> search;
  if (!isWhole) search.emplace(edges);
  std::vector<Placed> placed;
  for (size_t i = 0; i < known.size(); ++i) {
    const WindowStack& state = *known[i];
    if (isWhole) {
      for (const QPoint origin : wholeOrigins(state, picture.size())) {
        const StackEvidence evidence = evidenceOf(edges, state, origin);
        placed.push_back({&state, origin, evidence, evidence.score()});
      }
    } else if (i + kMostRegionStates >= known.size()) {
      if (const auto place = search->place(state)) {
        placed.push_back({&state, place->origin, place->evidence, place->score, place->isSure});
      }
    }
  }
  const Placed* chosen = best(placed, isWhole ? kAbout : kAboutOfRegion);
  if (!chosen || !chosen->isSure) return std::nullopt;
  return confirmed(picture, *chosen, isWhole ? CaptureKind::display : CaptureKind::selection);
}

}  // namespace quillmere::CapturedWindows
