#include <gtest/gtest.h>
#include <array>
#include <cmath>
#include <random>

#include "editor/CropHistory.h"
#include "editor/CropNotes.h"
#include "editor/CropsForTests.h"

// Whatever a person does to a selection. These hold after every event:
//
// - The selection lies inside the picture and is of whole pixels: at least one by one, or QRect().
// - The picture and its candidates are those of the beginning. A selected candidate is one of them.
// - No shadow is applied without a selected window that has one; where it has one, the shadow is applied just where
//   shadows are included. What was applied are whole pixels, no more than the shadow has (rounded up), of its source.
// - A selection that stands for a window is the window with what was applied, or the whole picture, or that less a
//   shadow that was taken off it.
// - A crop can be saved just where it has a pixel and neither reading nor an action is under way, and can replace the
//   original where that can be replaced besides. That there is no shadow to include is said just where the selection
//   stands for no window that has one, and that a shadow is a typical one just where such a shadow was taken in.
// - Every event gives what its rule, worked out here in plain numbers, gives; one that is refused changes nothing.
// - Undo and redo go through the states one by one, as a plain list of them does, and so does the end of the sequence:
//   all the way back and all the way forth again.
//
// QUILLMERE_CROPS_SEED=<seed> plays one sequence again.
namespace quillmere::testing {
namespace {

constexpr uint64_t kSequences = 100'000;
constexpr int kLongest = 14;

/// What the history must be: all states in a row, and where in it one is.
struct PlainHistory {
  std::vector<CropSelection> states;
  size_t at = 0;
  std::optional<CropSelection> inStep;  ///< the current one while a step is open

  const CropSelection& current() const { return inStep ? *inStep : states[at]; }
  void put(const CropSelection& next) {
    if (inStep) {
      inStep = next;
    } else if (next != states[at]) {
      states.resize(++at);
      states.push_back(next);
    }
  }
  void end() {
    if (!inStep) return;
    const CropSelection last = *std::exchange(inStep, std::nullopt);
    put(last);
  }
  bool canUndo() const { return at > 0 || current() != states[at]; }
  bool canRedo() const { return at + 1 < states.size() && current() == states[at]; }
  void undo() {
    end();
    if (at > 0) --at;
  }
  void redo() {
    end();
    if (at + 1 < states.size()) ++at;
  }
};

class Sequence {
 public:
  explicit Sequence(uint64_t seed)
      : random_(seed),
        image_(side(), side()),
        candidates_(someCandidates()),
        history_(CropSelection(image_, candidates_)) {
    plain_.states.push_back(history_.current());
  }
  /// The first invariant that does not hold; empty where all do.
  std::string play() {
    const int steps = upTo(kLongest) + 1;
    for (int i = 0; i < steps; ++i) {
      const char* broken = step();
      if (!broken) broken = brokenInvariant();
      if (!broken) broken = brokenNotes();
      if (!broken) broken = brokenHistory();
      if (broken) return broken + (" after step " + std::to_string(i + 1)) + " of " + std::to_string(steps);
    }
    const char* broken = backAndForth();
    return broken ? broken : "";
  }

 private:
  // --- Chance ---

  int upTo(int most) { return static_cast<int>(random_() % (static_cast<uint64_t>(most) + 1)); }
  int between(int least, int most) { return least + upTo(most - least); }
  bool oneIn(int count) { return upTo(count - 1) == 0; }
  int side() { return oneIn(4) ? between(1, 3) : oneIn(3) ? between(1, 60'000) : between(1, 300); }
  double place(int room) {
    if (oneIn(12)) return std::array{-1e300, 1e300, -1e9, 1e9, -0.0}[static_cast<size_t>(upTo(4))];
    const double place = between(-room / 4 - 2, room + room / 4 + 2);
    return oneIn(2) ? place : place + upTo(999) / 1000.0;
  }
  QPointF point() { return {place(image_.width()), place(image_.height())}; }
  double margin() {
    if (oneIn(10)) return std::array{1e300, 1e12, 3e9, 0.0}[static_cast<size_t>(upTo(3))];
    return oneIn(4) ? upTo(400) / 8.0 : upTo(60);
  }
  std::vector<WindowCandidate> someCandidates() {
    std::vector<WindowCandidate> candidates;
    const int count = upTo(3);
    for (int number = 1; number <= count; ++number) {
      const int x = upTo(image_.width() - 1);
      const int y = upTo(image_.height() - 1);
      const QRect rect(x, y, between(1, image_.width() - x), between(1, image_.height() - y));
      const auto source = static_cast<ShadowSource>(upTo(2));
      candidates.push_back(candidate(number, rect,
                                     source == ShadowSource::none
                                         ? WindowShadowMargin()
                                         : shadow(margin(), margin(), margin(), margin(), source)));
    }
    return candidates;
  }
  qint64 number(int room) {
    if (oneIn(10)) return static_cast<qint64>(random_());
    return oneIn(6) ? between(-3, 3) : upTo(room);
  }
  int distance(int room) {
    constexpr std::array kDistances{1, -1, 10, -10};
    if (oneIn(12)) return static_cast<int>(random_());
    return oneIn(6) ? between(-room, room) : kDistances[static_cast<size_t>(upTo(3))];
  }

  // --- Events ---

  const CropSelection& crop() const { return history_.current(); }
  bool isOwn() const { return !crop().selectedCandidate() && !crop().appliedShadow(); }
  /// Into both histories; the rule is tried against the outcome.
  template <typename Event>
  void change(const Event& event) {
    const CropSelection before = crop();
    const bool isChanged = history_.change(event);
    if (isChanged != (before != crop())) isAnswerWrong_ = true;
    plain_.put(crop());
  }

  const char* step() {
    switch (upTo(13)) {
      case 0:
      case 1:
        return drag();
      case 2:
      case 3:
        return pick();
      case 4:
      case 5:
        return setShadow(oneIn(2));
      case 6:
        return move();
      case 7:
        return resize();
      case 8:
        return type();
      case 9:
        return selectWhole();
      case 10:
        return byHand();
      case 11:
        return beginOrEnd();
      case 12:
        history_.undo();
        plain_.undo();
        return nullptr;
      default:
        history_.redo();
        plain_.redo();
        return nullptr;
    }
  }

  /// Along one side: from which pixel to before which one.
  static std::pair<int, int> touched(double one, double other, int room) {
    const auto inside = [&](double place) { return place < 0 ? 0.0 : place > room ? double(room) : place; };
    return {static_cast<int>(std::floor(inside(std::min(one, other)))),
            static_cast<int>(std::ceil(inside(std::max(one, other))))};
  }
  const char* drag() {
    const QPointF start = point();
    const QPointF end = oneIn(6) ? start : oneIn(6) ? QPointF(start.x(), point().y()) : point();
    change([&](CropSelection& crop) { crop.drag(start, end); });
    const auto [left, right] = touched(start.x(), end.x(), image_.width());
    const auto [top, bottom] = touched(start.y(), end.y(), image_.height());
    // Two ends that come to lie on one place at the edge are a drag of no length as well.
    const bool isNothing = isOnePlace(start, end) || left == right || top == bottom;
    const QRect expected = isNothing ? QRect() : QRect(left, top, right - left, bottom - top);
    if (crop().selection() != expected) return "a drag selects the pixels that it touches";
    CropSelection turned = crop();
    turned.drag(end, start);
    if (turned != crop()) return "a drag gives the same from its other end";
    return isOwn() ? nullptr : "a drag makes the selection one's own";
  }
  bool isOnePlace(QPointF one, QPointF other) const {
    const auto inside = [](double place, int room) { return std::clamp<double>(place, 0, room); };
    return inside(one.x(), image_.width()) == inside(other.x(), image_.width()) &&
           inside(one.y(), image_.height()) == inside(other.y(), image_.height());
  }

  /// The window with its shadow, clipped.
  QRect grown(const WindowCandidate& window) const {
    const auto [left, right] = touched(window.rect.left() - window.shadow.left,
                                       window.rect.left() + window.rect.width() + window.shadow.right, image_.width());
    const auto [top, bottom] =
        touched(window.rect.top() - window.shadow.top, window.rect.top() + window.rect.height() + window.shadow.bottom,
                image_.height());
    return {left, top, right - left, bottom - top};
  }
  const char* pick() {
    const int number = between(1, 4);
    const CropSelection before = crop();
    change([&](CropSelection& crop) { crop.pick(uuid(number)); });
    if (number > static_cast<int>(candidates_.size())) return crop() == before ? nullptr : "there is no such window";
    const WindowCandidate& window = candidates_[static_cast<size_t>(number - 1)];
    const bool isWithShadow = before.includesShadow() && window.shadow.source != ShadowSource::none;
    if (crop().selectedCandidate() != window.id) return "what is picked is selected";
    if (crop().includesShadow() != before.includesShadow()) return "picking leaves the wish for shadows";
    return crop().selection() == (isWithShadow ? grown(window) : window.rect) ? nullptr : "a window is its frame";
  }

  const char* setShadow(bool includes) {
    const CropSelection before = crop();
    change([&](CropSelection& crop) { crop.setIncludesShadow(includes); });
    const WindowCandidate* window = before.candidate();
    if (!window || window->shadow.source == ShadowSource::none || includes == before.appliedShadow().has_value()) {
      return crop() == before ? nullptr : "the box does nothing";
    }
    if (crop().includesShadow() != includes) return "the box is the wish for the next windows";
    if (includes) {
      if (crop().selection() != grown(*window)) return "with the shadow it is the window grown";
      CropSelection again = crop();
      again.setIncludesShadow(false);
      return again.selection() == window->rect ? nullptr : "what was added is given back, no more and no less";
    }
    const WindowShadowMargin& added = *before.appliedShadow();
    const QRect shrunk = before.selection().adjusted(static_cast<int>(added.left), static_cast<int>(added.top),
                                                     -static_cast<int>(added.right), -static_cast<int>(added.bottom));
    return crop().selection() == shrunk ? nullptr : "without the shadow it is what it was, less what was added";
  }

  /// Sums of any two numbers are in its range, and those of small ones exact.
  using Wide = long double;
  static Wide bounded(Wide least, Wide value, Wide most) { return value > most ? most : value < least ? least : value; }
  const char* move() {
    const int dx = distance(image_.width());
    const int dy = oneIn(3) ? distance(image_.height()) : 0;
    const CropSelection before = crop();
    change([&](CropSelection& crop) { crop.moveBy(dx, dy); });
    if (before.isEmpty()) return crop() == before ? nullptr : "nothing is moved";
    const QRect from = before.selection();
    const QRect to = crop().selection();
    if (to.size() != from.size()) return "moving keeps the size";
    if (to.x() != bounded(0, static_cast<Wide>(from.x()) + dx, image_.width() - from.width()) ||
        to.y() != bounded(0, static_cast<Wide>(from.y()) + dy, image_.height() - from.height())) {
      return "it moves as far as the picture goes";
    }
    return isOwn() ? nullptr : "a key makes the selection one's own";
  }
  const char* resize() {
    const int dx = distance(image_.width());
    const int dy = oneIn(3) ? distance(image_.height()) : 0;
    const CropSelection before = crop();
    change([&](CropSelection& crop) { crop.resizeBy(dx, dy); });
    if (before.isEmpty()) return crop() == before ? nullptr : "nothing has no size to change";
    const QRect from = before.selection();
    const QRect to = crop().selection();
    if (to.topLeft() != from.topLeft()) return "the top left corner stays";
    if (to.width() != bounded(1, static_cast<Wide>(from.width()) + dx, image_.width() - from.x()) ||
        to.height() != bounded(1, static_cast<Wide>(from.height()) + dy, image_.height() - from.y())) {
      return "a side has one pixel at least and the room at most";
    }
    return isOwn() ? nullptr : "a key makes the selection one's own";
  }

  const char* type() {
    const Wide x = number(image_.width());
    const Wide y = number(image_.height());
    const Wide width = number(image_.width());
    const Wide height = number(image_.height());
    const bool isInside =
        x >= 0 && y >= 0 && width > 0 && height > 0 && x + width <= image_.width() && y + height <= image_.height();
    const CropSelection before = crop();
    bool isAccepted = false;
    change([&](CropSelection& crop) {
      isAccepted = crop.setBounds(static_cast<qint64>(x), static_cast<qint64>(y), static_cast<qint64>(width),
                                  static_cast<qint64>(height));
    });
    if (isAccepted != isInside) return "bounds are taken just where they have a size and lie inside";
    if (!isInside) return crop() == before ? nullptr : "refused bounds change nothing";
    const QRect expected(static_cast<int>(x), static_cast<int>(y), static_cast<int>(width), static_cast<int>(height));
    if (crop().selection() != expected) return "bounds are what was typed";
    return isOwn() ? nullptr : "a field makes the selection one's own";
  }

  const char* selectWhole() {
    const CropSelection before = crop();
    change([](CropSelection& crop) { crop.selectWholeImage(); });
    if (!crop().isWholeImage()) return "the whole picture is selected";
    return crop().selectedCandidate() == before.selectedCandidate() && crop().appliedShadow() == before.appliedShadow()
               ? nullptr
               : "the whole picture leaves window and shadow";
  }
  const char* byHand() {
    const int x = between(-10, image_.width() + 10);
    const int y = between(-10, image_.height() + 10);
    const QRect wanted(x, y, between(-5, image_.width() + 20), between(-5, image_.height() + 20));
    change([&](CropSelection& crop) { crop.setByHand(wanted); });
    const int left = std::max(0, std::min(x, x + wanted.width()));
    const int top = std::max(0, std::min(y, y + wanted.height()));
    const int right = std::min(image_.width(), std::max(x, x + wanted.width()));
    const int bottom = std::min(image_.height(), std::max(y, y + wanted.height()));
    const bool isNothing = right <= left || bottom <= top;
    const QRect inside(left, top, right - left, bottom - top);
    if (crop().selection() != (isNothing ? QRect() : inside)) return "by hand it is the part inside";
    return isOwn() ? nullptr : "by hand it is one's own";
  }

  const char* beginOrEnd() {
    if (history_.isInStep() && oneIn(3)) {
      history_.cancel();
      plain_.inStep.reset();
    } else if (history_.isInStep() && oneIn(2)) {
      history_.end();
      plain_.end();
    } else {
      history_.begin();
      plain_.end();
      plain_.inStep = plain_.states[plain_.at];
    }
    return nullptr;
  }

  // --- What always holds ---

  const char* brokenInvariant() const {
    if (isAnswerWrong_) return "a change says whether it was one";
    const QRect selection = crop().selection();
    if (crop().imageSize() != image_ || crop().candidates() != candidates_) return "picture and windows stay";
    if (selection.isEmpty() ? selection != QRect() : !crop().bounds().contains(selection)) return "inside, or nothing";
    if (selection.isEmpty() != crop().isEmpty()) return "empty is what has no pixel";
    const WindowCandidate* window = crop().candidate();
    if (crop().selectedCandidate().has_value() != (window != nullptr)) return "a selected window is one of them";
    const bool canInclude = window && window->shadow.source != ShadowSource::none;
    if (crop().canIncludeShadow() != canInclude) return "a shadow needs a window that has one";
    if (crop().appliedShadow().has_value() != (canInclude && crop().includesShadow())) return "applied as wished";
    if (crop().appliedShadow() && !isPartOf(*crop().appliedShadow(), window->shadow)) return "applied is what there is";
    return window && !isOfWindow(*window) ? "a window's selection is the window's" : nullptr;
  }
  static bool isPartOf(const WindowShadowMargin& applied, const WindowShadowMargin& shadow) {
    const auto isPart = [](double part, double all) {
      return part >= 0 && part <= std::ceil(all) && part == std::floor(part);
    };
    return applied.source == shadow.source && isPart(applied.left, shadow.left) && isPart(applied.top, shadow.top) &&
           isPart(applied.right, shadow.right) && isPart(applied.bottom, shadow.bottom);
  }
  /// The window or the whole picture, with the shadow that is applied or less the one that was taken off.
  bool isOfWindow(const WindowCandidate& window) const {
    if (crop().isWholeImage()) return true;
    if (crop().appliedShadow()) return crop().selection() == grown(window);
    return crop().selection() == window.rect || crop().selection() == wholeLessShadow(window);
  }
  QRect wholeLessShadow(const WindowCandidate& window) const {
    const QRect all = grown(window);
    return {window.rect.left() - all.left(), window.rect.top() - all.top(),
            image_.width() - all.width() + window.rect.width(), image_.height() - all.height() + window.rect.height()};
  }

  // --- What is said and can be done ---

  const char* brokenNotes() {
    CropSituation situation;
    situation.isLoading = oneIn(4);
    situation.isWorking = oneIn(4);
    situation.isReplaceable = !oneIn(3);
    situation.offersKeep = oneIn(2);
    if (oneIn(2)) situation.detection = candidates_.empty() ? WindowDetection::noneFound : WindowDetection::found;
    const QRect selection = crop().selection();
    const bool hasPixel = selection.width() > 0 && selection.height() > 0;
    const bool isAtRest = !situation.isLoading && !situation.isWorking;
    if (CropNotes::canSave(crop(), situation) != (hasPixel && isAtRest)) return "a pixel can be saved when all rests";
    const bool canReplace = hasPixel && isAtRest && situation.isReplaceable;
    if (CropNotes::canReplace(crop(), situation) != canReplace) return "it replaces what can be replaced";
    auto source = ShadowSource::none;
    for (const WindowCandidate& window : candidates_) {
      if (window.id == crop().selectedCandidate()) source = window.shadow.source;
    }
    const bool hasShadow = source != ShadowSource::none;
    if (CropNotes::shadowObstacle(crop()).has_value() == hasShadow) return "without a shadow it is said that none is";
    // Where a window with a shadow is selected its shadow is in just as it is wished for.
    const bool isTypical = source == ShadowSource::estimated && crop().includesShadow();
    return CropNotes::shadowNote(crop()).has_value() == isTypical ? nullptr : "a typical shadow is called one";
  }

  // --- History ---

  const char* brokenHistory() const {
    if (crop() != plain_.current()) return "the history is where a plain one is";
    if (history_.isInStep() != plain_.inStep.has_value()) return "a step is open just between its ends";
    if (history_.canUndo() != plain_.canUndo()) return "what was changed can be undone";
    return history_.canRedo() == plain_.canRedo() ? nullptr : "what was undone can be redone";
  }
  const char* backAndForth() {
    history_.end();
    plain_.end();
    const CropSelection last = crop();
    int steps = 0;
    for (; history_.canUndo(); ++steps) {
      history_.undo();
      plain_.undo();
      if (const char* broken = brokenHistory()) return broken;
    }
    for (; steps > 0; --steps) {
      history_.redo();
      plain_.redo();
      if (const char* broken = brokenHistory()) return broken;
    }
    return crop() == last ? nullptr : "all the way back and forth is the same";
  }

  std::mt19937_64 random_;
  QSize image_;
  std::vector<WindowCandidate> candidates_;
  CropHistory history_;
  PlainHistory plain_;
  bool isAnswerWrong_ = false;
};

TEST(RandomCrops, WhateverIsDoneTheSelectionIsAPartOfThePicture) {
  uint64_t first = std::random_device{}();
  uint64_t count = kSequences;
  if (const char* seed = std::getenv("QUILLMERE_CROPS_SEED")) {
    first = std::strtoull(seed, nullptr, 10);
    count = 1;
  }
  for (uint64_t seed = first; seed < first + count; ++seed) {
    const std::string broken = Sequence(seed).play();
    ASSERT_EQ(broken, std::string()) << "QUILLMERE_CROPS_SEED=" << seed;
  }
}

}  // namespace
}  // namespace quillmere::testing
