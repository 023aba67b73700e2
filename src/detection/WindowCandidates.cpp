#include "detection/WindowCandidates.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace quillmere::WindowDetector {
namespace {

constexpr double kWeakestSide = 0.35;
constexpr double kNarrowest = 0.2;
constexpr double kWidest = 6.0;

int64_t leastWidth(int64_t width) {
  return width < 1440 ? 120 : width / 12;
}
int64_t leastHeight(int64_t height) {
  return height < 1200 ? 100 : height / 12;
}

/// How well the segments of some parallel lines are backed. Bit k of an entry is the segment that ends at position k of
/// the lines that cross them; at most 56 are kept, so that a word has room for all.
struct Segments {
  uint64_t drawn = 0;   ///< support of at least 0.75
  uint64_t backed = 0;  ///< support of at least 0.35
};

std::vector<const LineProfile*> inOrder(const std::unordered_map<int, LineProfile>& profiles,
                                        const std::vector<int>& positions) {
  std::vector<const LineProfile*> result;
  for (const int position : positions) result.push_back(&profiles.at(position));
  return result;
}

/// `segments[line * count + begin]` of every line and every position where a segment may begin.
std::vector<Segments> allSegments(const std::vector<const LineProfile*>& lines, const std::vector<int>& positions,
                                  int64_t leastLength) {
  std::vector<Segments> result(lines.size() * positions.size());
  auto* segments = result.data();
  for (const LineProfile* line : lines) {
    for (size_t begin = 0; begin < positions.size(); ++begin, ++segments) {
      for (size_t end = begin + 1; end < positions.size(); ++end) {
        const int length = positions[end] - positions[begin];
        if (length < leastLength) continue;
        const double support = static_cast<double>(line->hits(positions[begin], positions[end])) / length;
        if (support >= kDrawnSide) segments->drawn |= uint64_t{1} << end;
        if (support >= kWeakestSide) segments->backed |= uint64_t{1} << end;
      }
    }
  }
  return result;
}

/// They stay in their order.
void keepStrongest(std::vector<Candidate>& candidates) {
  std::vector<std::pair<double, size_t>> order;
  order.reserve(candidates.size());
  for (size_t i = 0; i < candidates.size(); ++i) order.emplace_back(-candidates[i].strength(), i);
  std::nth_element(order.begin(), order.begin() + kMostCandidates, order.end());
  order.resize(kMostCandidates);
  std::sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
  std::vector<Candidate> kept;
  kept.reserve(kMostCandidates);
  for (const auto& [weakness, place] : order) kept.push_back(candidates[place]);
  candidates = std::move(kept);
}

/// Tries all rectangles, many at a time: for a pair of columns and an upper row, the lower rows are the bits of a word.
class Enumeration {
 public:
  Enumeration(const std::vector<int>& columns, const std::vector<int>& rows, const LineProfiles& profiles,
              int64_t leastWidth, int64_t leastHeight)
      : columns_(columns),
        rows_(rows),
        columnProfiles_(inOrder(profiles.columns, columns)),
        rowProfiles_(inOrder(profiles.rows, rows)),
        leastWidth_(leastWidth),
        vertical_(allSegments(columnProfiles_, rows, leastHeight)),
        horizontal_(allSegments(rowProfiles_, columns, leastWidth)) {}

  std::vector<Candidate> run() {
    for (size_t left = 0; left < columns_.size(); ++left) {
      for (size_t right = left + 1; right < columns_.size(); ++right) {
        if (columns_[right] - columns_[left] >= leastWidth_) tryColumns(left, right);
      }
    }
    if (found_.size() > kMostCandidates) keepStrongest(found_);
    return std::move(found_);
  }

 private:
  void tryColumns(size_t left, size_t right) {
    uint64_t drawnRows = 0;
    uint64_t backedRows = 0;
    for (size_t row = 0; row < rows_.size(); ++row) {
      const Segments& side = horizontal_[row * columns_.size() + left];
      drawnRows |= ((side.drawn >> right) & 1) << row;
      backedRows |= ((side.backed >> right) & 1) << row;
    }
    for (uint64_t tops = backedRows; tops != 0; tops &= tops - 1) {
      const auto top = static_cast<size_t>(std::countr_zero(tops));
      const Segments& a = vertical_[left * rows_.size() + top];
      const Segments& b = vertical_[right * rows_.size() + top];
      const bool isTopDrawn = ((drawnRows >> top) & 1) != 0;
      // Of the four sides three must be drawn.
      const uint64_t both = a.drawn & b.drawn;
      const uint64_t enough = isTopDrawn ? both | ((a.drawn | b.drawn) & drawnRows) : both & drawnRows;
      for (uint64_t bottoms = enough & a.backed & b.backed & backedRows; bottoms != 0; bottoms &= bottoms - 1) {
        add(left, right, top, static_cast<size_t>(std::countr_zero(bottoms)));
      }
    }
  }

  void add(size_t left, size_t right, size_t top, size_t bottom) {
    const int x1 = columns_[left];
    const int x2 = columns_[right];
    const int y1 = rows_[top];
    const int y2 = rows_[bottom];
    const double w = x2 - x1;
    const double h = y2 - y1;
    if (!(kNarrowest < w / h && w / h < kWidest)) return;
    Candidate candidate;
    candidate.support = {columnProfiles_[left]->hits(y1, y2) / h, columnProfiles_[right]->hits(y1, y2) / h,
                         rowProfiles_[top]->hits(x1, x2) / w, rowProfiles_[bottom]->hits(x1, x2) / w};
    candidate.frame = QRectF(x1, y1, w, h);
    found_.push_back(candidate);
    if (found_.size() == 2 * kMostCandidates) keepStrongest(found_);
  }

  const std::vector<int>& columns_;
  const std::vector<int>& rows_;
  std::vector<const LineProfile*> columnProfiles_;
  std::vector<const LineProfile*> rowProfiles_;
  int64_t leastWidth_;
  std::vector<Segments> vertical_;
  std::vector<Segments> horizontal_;
  std::vector<Candidate> found_;
};

}  // namespace

double Candidate::weakestSide() const {
  return *std::min_element(support.begin(), support.end());
}

std::optional<CandidateSearch> candidates(int64_t width, int64_t height, const EdgeMaps& maps) {
  const std::vector<int> columns = linePeaks(maps.columnCounts, height, width);
  const std::vector<int> rows = linePeaks(maps.rowCounts, width, height);
  if (columns.size() < 2 || rows.size() < 2) return std::nullopt;
  CandidateSearch search{{}, LineProfiles(maps, columns, rows)};
  search.candidates = Enumeration(columns, rows, search.profiles, leastWidth(width), leastHeight(height)).run();
  return search;
}

}  // namespace quillmere::WindowDetector
