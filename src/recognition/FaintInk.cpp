#include "recognition/FaintInk.h"

#include <algorithm>
#include <optional>

#include "recognition/TextLines.h"

namespace quillmere {
namespace {

using Ground = TextGrounds::Ground;

/// What stands out less belongs to the ground.
constexpr int kLeast = 5;
/// Of the strongest pixel of faint ink. Less is decoration, and more is found without looking for it.
constexpr int kFaintest = 16;
constexpr int kStrong = 90;
/// The fewest pixels of an area to which others are compared.
constexpr int64_t kFlat = 1000;
/// Nothing that is higher is faint text.
constexpr int kTallest = 110;
constexpr int kJpegReach = 4;
constexpr int kRuleThickness = 4;
constexpr int kShortestRule = 60;

/// Areas of exactly one colour, to which what stands on them is compared.
class FlatAreas {
 public:
  FlatAreas(const QImage& image, const std::vector<Ground>& grounds) : rowBegins_(static_cast<size_t>(image.height())) {
    size_t above = 0;
    for (int y = 0; y < image.height(); ++y) {
      const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(y));
      const Ground* row = grounds.data() + static_cast<size_t>(y) * static_cast<size_t>(image.width());
      const size_t rowBegin = rowBegins_[static_cast<size_t>(y)] = runs_.size();
      for (int x = 0; x < image.width();) {
        const int begin = x;
        while (x < image.width() && row[x] >= 0 && pixels[x] == pixels[begin]) ++x;
        if (x == begin) {
          ++x;
          continue;
        }
        const size_t run = runs_.size();
        runs_.push_back({begin, x, pixels[begin], run, x - begin});
        while (above < rowBegin && runs_[above].end <= begin) ++above;
        for (size_t other = above; other < rowBegin && runs_[other].begin < x; ++other) {
          if (runs_[other].color == pixels[begin]) join(run, other);
        }
      }
      above = rowBegin;
    }
  }

  /// Goes along one row from the left.
  class Walk {
   public:
    Walk(FlatAreas& areas, int y) : areas_(areas), run_(areas.rowBegins_[static_cast<size_t>(y)]) {
      const size_t next = static_cast<size_t>(y) + 1;
      end_ = next < areas.rowBegins_.size() ? areas.rowBegins_[next] : areas.runs_.size();
      for (size_t run = run_; run < end_ && !color_; ++run) look(run);
    }
    /// Of the last flat area up to this place; of the first one before there is any.
    std::optional<uint32_t> colorAt(int x) {
      while (run_ < end_ && areas_.runs_[run_].begin <= x) look(run_++);
      return color_;
    }

   private:
    void look(size_t run) {
      if (areas_.runs_[areas_.root(run)].pixels >= kFlat) color_ = areas_.runs_[run].color;
    }
    FlatAreas& areas_;
    size_t run_, end_;
    std::optional<uint32_t> color_;
  };

 private:
  struct Run {
    int begin, end;
    uint32_t color;
    size_t parent;
    int64_t pixels;  ///< of the whole area, where it is its own parent
  };

  size_t root(size_t run) {
    while (runs_[run].parent != run) run = runs_[run].parent = runs_[runs_[run].parent].parent;
    return run;
  }
  void join(size_t a, size_t b) {
    a = root(a);
    b = root(b);
    if (a == b) return;
    runs_[a].parent = b;
    runs_[b].pixels += runs_[a].pixels;
  }

  std::vector<Run> runs_;
  std::vector<size_t> rowBegins_;
};

/// Pixels side by side that are ink already, or that differ from their flat ground.
struct Run {
  int y, begin, end;
  bool isInk;
  uint32_t groundColor;
  size_t parent;
};

size_t root(std::vector<Run>& runs, size_t run) {
  while (runs[run].parent != run) run = runs[run].parent = runs[runs[run].parent].parent;
  return run;
}

std::vector<Run> joinedRuns(const QImage& image, const std::vector<Ground>& grounds) {
  FlatAreas flats(image, grounds);
  std::vector<Run> runs;
  size_t rowBegin = 0;
  for (int y = 0; y < image.height(); ++y) {
    const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(y));
    const Ground* row = grounds.data() + static_cast<size_t>(y) * static_cast<size_t>(image.width());
    size_t above = rowBegin;
    rowBegin = runs.size();
    FlatAreas::Walk walk(flats, y);
    for (int x = 0; x < image.width(); ++x) {
      const bool isInk = row[x] == TextGrounds::kInk;
      const auto color = walk.colorAt(x);
      if (row[x] == TextGrounds::kRule || !color) continue;
      if (!isInk && (pixels[x] == *color || colorDistance(pixels[x], *color) < kLeast)) continue;
      if (runs.size() > rowBegin && runs.back().end == x && runs.back().isInk == isInk &&
          runs.back().groundColor == *color) {
        ++runs.back().end;
      } else {
        const bool continues = runs.size() > rowBegin && runs.back().end == x;
        runs.push_back({y, x, x + 1, isInk, *color, continues ? runs.back().parent : runs.size()});
      }
      // Corners count as contact.
      while (above < rowBegin && runs[above].end < x) ++above;
      for (size_t other = above; other < rowBegin && runs[other].begin <= x + 1; ++other) {
        const size_t own = root(runs, runs.size() - 1);
        runs[own].parent = root(runs, other);
      }
    }
  }
  return runs;
}

struct Piece {
  QRect box;
  uint32_t groundColor = 0;
  int contrast = 0;
  int pixels = 0;
  bool isRule() const {
    return std::max(box.width(), box.height()) >= kShortestRule &&
           pixels <= kRuleThickness * (box.width() + box.height());
  }
  bool isFaint() const { return contrast >= kFaintest && contrast < kStrong && box.height() <= kTallest; }
};

/// What JPEG leaves around letters is not faint text.
bool isBesideStrongInk(const Piece& piece, const QImage& image) {
  const QRect around = piece.box.adjusted(-kJpegReach, -kJpegReach, kJpegReach, kJpegReach) & image.rect();
  for (int y = around.top(); y <= around.bottom(); ++y) {
    const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(y));
    const auto isStrong = [&](uint32_t pixel) { return colorDistance(pixel, piece.groundColor) >= kStrong; };
    if (std::any_of(pixels + around.left(), pixels + around.right() + 1, isStrong)) return true;
  }
  return false;
}

}  // namespace

void markFaintInk(const QImage& image, std::vector<Ground>& grounds) {
  std::vector<Run> runs = joinedRuns(image, grounds);
  std::vector<Piece> pieces(runs.size());
  for (size_t i = 0; i < runs.size(); ++i) {
    const Run& run = runs[i];
    Piece& piece = pieces[root(runs, i)];
    piece.box |= QRect(QPoint(run.begin, run.y), QPoint(run.end - 1, run.y));
    piece.groundColor = run.groundColor;
    piece.pixels += run.end - run.begin;
    const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(run.y));
    for (int x = run.begin; x < run.end; ++x) {
      piece.contrast = std::max(piece.contrast, colorDistance(pixels[x], run.groundColor));
    }
  }
  std::vector<bool> faint(pieces.size());
  for (size_t i = 0; i < pieces.size(); ++i) faint[i] = pieces[i].isFaint() && !isBesideStrongInk(pieces[i], image);
  for (size_t i = 0; i < runs.size(); ++i) {
    const Piece& piece = pieces[root(runs, i)];
    if (runs[i].isInk || !faint[root(runs, i)]) continue;
    Ground* row = grounds.data() + static_cast<size_t>(runs[i].y) * static_cast<size_t>(image.width());
    std::fill(row + runs[i].begin, row + runs[i].end, piece.isRule() ? TextGrounds::kRule : TextGrounds::kInk);
  }
}

}  // namespace quillmere
