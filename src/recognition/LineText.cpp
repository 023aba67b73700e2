#include "recognition/LineText.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <map>
#include <numbers>
#include <optional>
#include <set>
#include <utility>

namespace quillmere {
namespace {

/// Fewer symbols stand at even distances by chance.
constexpr size_t kFewest = 8;
/// How well they have to agree with cells at least. Others agree by chance up to 0.7 when they are few.
constexpr double kAgreement = 0.93;
/// Widths of cells are tried as far around the one that was read.
constexpr int kSteps = 60;
constexpr double kStep = 0.001;
/// How much of the ink of two cells with the same sign is the same.
constexpr double kAlike = 0.9;
/// How many of the spaces that were read have to be there.
constexpr double kLeastSpaces = 0.75;
/// As many marks side by side are no parts of letters.
constexpr size_t kRow = 4;
/// Two strokes of a quote may touch; one alone is not so broad, in cells.
constexpr double kBroadQuote = 0.45;
/// A gap between words, in heights of the line.
constexpr double kSpace = 0.22;

double middle(const ReadSymbol& symbol) {
  return (symbol.left + symbol.right) / 2;
}

/// Cells of equal width.
struct Grid {
  double first = 0;  ///< the middle of the first cell
  double advance = 0;
  int column(double x) const { return static_cast<int>(std::lround((x - first) / advance)); }
};

/// Signs that touch are read as one, and one in the middle of two cells.
std::vector<ReadSymbol> lettersOf(const std::vector<ReadSymbol>& symbols) {
  std::vector<ReadSymbol> letters;
  bool isApart = false;
  for (const ReadSymbol& symbol : symbols) {
    isApart = isApart || symbol.beginsWord;
    if (!symbol.text[0].isLetterOrNumber()) {
      isApart = true;
      continue;
    }
    letters.push_back(symbol);
    letters.back().beginsWord = std::exchange(isApart, false);
  }
  return letters;
}

/// How well the pieces' middles agree with cells of this width, up to 1, and where the first cell's middle is.
std::pair<double, double> agreement(const std::vector<double>& middles, double advance) {
  std::complex<double> sum;
  for (const double x : middles) sum += std::polar(1.0, 2 * std::numbers::pi * x / advance);
  return {std::abs(sum) / static_cast<double>(middles.size()), std::arg(sum) / (2 * std::numbers::pi) * advance};
}

/// Where the cells of monospaced text are: about as far apart as the letters were read, and exactly as the ink shows.
std::optional<Grid> grid(const TextLine& line, const std::vector<ReadSymbol>& symbols) {
  std::vector<double> steps;
  for (size_t i = 1; i < symbols.size(); ++i) {
    if (!symbols[i].beginsWord) steps.push_back(middle(symbols[i]) - middle(symbols[i - 1]));
  }
  if (steps.size() < kFewest / 2) return std::nullopt;
  const auto half = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::nth_element(steps.begin(), half, steps.end());
  const double about = *half;
  if (about <= 2) return std::nullopt;
  const auto middlesFrom = [&](double least, int share) {
    std::vector<double> middles;
    for (const InkPiece& piece : line.pieces) {
      const double width = piece.box.width();
      const bool isUsual = width >= least * about && width <= 1.1 * about;
      if (isUsual && piece.box.height() * share >= line.box.height()) middles.push_back(piece.box.left() + width / 2);
    }
    return middles;
  };
  auto middles = middlesFrom(0.3, 3);
  if (middles.size() < kFewest) middles = middlesFrom(0.1, line.box.height());
  if (middles.size() < kFewest) return std::nullopt;
  double best = 0;
  Grid grid;
  for (int step = -kSteps; step <= kSteps; ++step) {
    const double advance = about * (1 + kStep * step);
    const auto [agrees, first] = agreement(middles, advance);
    if (agrees <= best) continue;
    best = agrees;
    grid = {first, advance};
  }
  return best >= kAgreement ? std::optional(grid) : std::nullopt;
}

/// The pieces whose middle is between two places.
std::vector<const InkPiece*> piecesBetween(const TextLine& line, double left, double right) {
  std::vector<const InkPiece*> found;
  for (const InkPiece& piece : line.pieces) {
    const double place = (piece.box.left() + piece.box.right() + 1) / 2.0;
    if (place >= left && place <= right) found.push_back(&piece);
  }
  return found;
}

/// Whether it goes to the right on its way down.
bool leansBack(const InkPiece& piece) {
  double above = 0, below = 0, aboveCount = 0, belowCount = 0;
  for (const InkPiece::Run& run : piece.runs) {
    const bool isAbove = run.y * 2 < piece.box.top() + piece.box.bottom();
    (isAbove ? above : below) += (run.begin + run.end) / 2.0 * (run.end - run.begin);
    (isAbove ? aboveCount : belowCount) += run.end - run.begin;
  }
  if (aboveCount == 0 || belowCount == 0) return false;
  return below / belowCount - above / aboveCount > 0.18 * piece.box.width();
}

QString typedQuote(const TextLine& line, const ReadSymbol& symbol, const Grid& grid) {
  const QString straight = QStringLiteral("“”\"").contains(symbol.text) ? QStringLiteral("\"") : QStringLiteral("'");
  const double place = grid.first + grid.advance * grid.column(middle(symbol));
  const auto pieces = piecesBetween(line, place - grid.advance / 2, place + grid.advance / 2);
  if (pieces.empty() || pieces.size() > 2) return straight;
  const auto isHigh = [&](const InkPiece* piece) {
    return piece->box.bottom() * 2 < line.box.top() + line.box.bottom();
  };
  if (!std::all_of(pieces.begin(), pieces.end(), isHigh)) return symbol.text == u"*" ? symbol.text : straight;
  if (pieces.size() == 2) return QStringLiteral("\"");
  if (leansBack(*pieces[0])) return QStringLiteral("`");
  if (pieces[0]->box.width() > kBroadQuote * grid.advance)
    return symbol.text == u"*" ? symbol.text : QStringLiteral("\"");
  return symbol.text == u"*" ? symbol.text : QStringLiteral("'");
}

/// A zero of monospaced text may have a dot, which no other sign of its shape has.
bool hasDot(const TextLine& line, const ReadSymbol& symbol) {
  const auto pieces = piecesBetween(line, symbol.left - 1, symbol.right + 1);
  if (pieces.size() != 2) return false;
  const bool isFirstLarge = pieces[0]->box.height() > pieces[1]->box.height();
  const QRect outer = pieces[isFirstLarge ? 0 : 1]->box, inner = pieces[isFirstLarge ? 1 : 0]->box;
  return outer.adjusted(1, 2, -1, -2).contains(inner) && std::abs(outer.center().y() - inner.center().y()) <= 2;
}

void mend(const TextLine& line, ReadSymbol& symbol, const Grid& grid) {
  if (QStringLiteral("‘’'“”\"`´*°").contains(symbol.text)) symbol.text = typedQuote(line, symbol, grid);
  if (symbol.text == u"–" || symbol.text == u"—") symbol.text = QStringLiteral("-");
  if (QStringLiteral("689OoQ@").contains(symbol.text) && hasDot(line, symbol)) symbol.text = QStringLiteral("0");
}

/// What the engine takes a mark for.
QString looksLike(char16_t sign) {
  switch (sign) {
    case u'_':
      return QStringLiteral("_-–—");
    case u'=':
      return QStringLiteral("=-–—_");
    case u'.':
      return QStringLiteral(".…-–—_,·:");
    default:
      return QStringLiteral("-–—_=");
  }
}

/// Of the marks, those that are no part of a letter. A dash alone is left to the engine, unless it overlooked it in
/// monospaced text.
std::vector<TextMark> certain(const std::vector<TextMark>& marks, const std::vector<ReadSymbol>& symbols,
                              double advance) {
  std::vector<TextMark> result;
  const auto continues = [&](size_t a, size_t b) {
    return marks[a].sign == marks[b].sign && marks[b].box.left() - marks[a].box.right() <= 2 * marks[a].box.width();
  };
  for (size_t begin = 0, end = 0; begin < marks.size(); begin = end) {
    end = begin + 1;
    while (end < marks.size() && continues(end - 1, end)) ++end;
    for (size_t i = begin; i < end; ++i) {
      const TextMark& mark = marks[i];
      const double place = (mark.box.left() + mark.box.right() + 1) / 2.0;
      const auto isOther = [&](const ReadSymbol& symbol) {
        return std::abs(middle(symbol) - place) < std::max(0.35 * advance, 2.0) &&
               !looksLike(mark.sign).contains(symbol.text);
      };
      const bool isRow = end - begin >= kRow;
      if (mark.sign == u'-' && !isRow && (advance == 0 || std::any_of(symbols.begin(), symbols.end(), isOther)))
        continue;
      result.push_back(mark);
    }
  }
  return result;
}

/// The engine's symbols, and marks in the place of what it took them for.
std::vector<ReadSymbol> withMarks(const std::vector<ReadSymbol>& symbols, const std::vector<TextMark>& marks,
                                  double advance) {
  std::vector<ReadSymbol> result;
  const auto isMarked = [&](const ReadSymbol& symbol) {
    return std::any_of(marks.begin(), marks.end(), [&](const TextMark& mark) {
      if (!looksLike(mark.sign).contains(symbol.text)) return false;
      const double reach = std::max(advance / 2, 2.0);
      return middle(symbol) >= mark.box.left() - reach && middle(symbol) <= mark.box.right() + 1 + reach;
    });
  };
  std::copy_if(symbols.begin(), symbols.end(), std::back_inserter(result),
               [&](const ReadSymbol& symbol) { return !isMarked(symbol); });
  // The engine's order is right even where its places are not.
  auto next = result.begin();
  const auto insert = [&](ReadSymbol symbol) {
    next = std::find_if(next, result.end(), [&](const ReadSymbol& other) { return middle(other) > middle(symbol); });
    next = result.insert(next, std::move(symbol)) + 1;
  };
  for (const TextMark& mark : marks) {
    const double left = mark.box.left(), width = mark.box.width();
    const int count =
        mark.sign == u'_' && advance > 0 ? std::max(1, static_cast<int>(std::lround(width / advance))) : 1;
    for (int i = 0; i < count; ++i) {
      insert({QString(QChar(mark.sign)), left + width * i / count, left + width * (i + 1) / count, false, true});
    }
  }
  return result;
}

/// A symbol's place may reach far over the next ones.
void partPlaces(std::vector<ReadSymbol>& symbols) {
  for (size_t i = 0; i + 1 < symbols.size(); ++i) {
    const double next = symbols[i + 1].left;
    if (next > symbols[i].left) symbols[i].right = std::min(symbols[i].right, next);
  }
}

/// What the ink of a cell alone is certain to be: bars, which may touch their neighbours.
std::optional<char16_t> barsIn(const TextLine& line, const Grid& grid, int cell) {
  const double middleOfCell = grid.first + grid.advance * cell;
  const int left = static_cast<int>(std::lround(middleOfCell - 0.36 * grid.advance));
  const int right = static_cast<int>(std::lround(middleOfCell + 0.36 * grid.advance));
  std::vector<int> inked(static_cast<size_t>(line.box.height()));
  for (const InkPiece& piece : line.pieces) {
    if (piece.box.right() < left || piece.box.left() >= right) continue;
    for (const InkPiece::Run& run : piece.runs) {
      const int length = std::min(run.end, right) - std::max(run.begin, left);
      if (length > 0) inked[static_cast<size_t>(run.y - line.box.top())] += length;
    }
  }
  std::vector<int> bars;  // their thicknesses
  int last = -1;
  for (size_t y = 0; y < inked.size(); ++y) {
    if (inked[y] == 0) continue;
    if (inked[y] * 10 < 7 * (right - left)) return std::nullopt;
    if (static_cast<int>(y) != last + 1 || bars.empty()) bars.push_back(0);
    ++bars.back();
    last = static_cast<int>(y);
  }
  const auto isThin = [&](int bar) { return bar <= std::max(2, line.box.height() / 5); };
  if (bars.size() == 2 && std::all_of(bars.begin(), bars.end(), isThin)) return u'=';
  return std::nullopt;
}

/// In which cells there is ink, from the left.
std::vector<int> inkedCells(const TextLine& line, const Grid& grid) {
  std::vector<int> cells;
  for (const InkPiece& piece : line.pieces) {
    // Into the next cells letters reach a little.
    const double reach = std::min(0.3 * grid.advance, piece.box.width() / 2.0);
    const int last = grid.column(piece.box.right() + 1 - reach);
    for (int cell = grid.column(piece.box.left() + reach); cell <= last; ++cell) cells.push_back(cell);
  }
  std::sort(cells.begin(), cells.end());
  cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
  return cells;
}

/// Gives each symbol the cell that it was read in. The engine's places are inexact, but not its order: of all ways to
/// go along both, the one that moves the symbols least.
std::vector<std::optional<int>> cellsOf(const std::vector<ReadSymbol>& symbols, const std::vector<int>& cells,
                                        const Grid& grid) {
  constexpr double kLeftOut = 1.2;
  const size_t rows = symbols.size() + 1, columns = cells.size() + 1;
  std::vector<double> costs(rows * columns);
  const auto cost = [&](size_t symbol, size_t cell) -> double& { return costs[symbol * columns + cell]; };
  const auto distance = [&](size_t symbol, size_t cell) {
    return std::abs((middle(symbols[symbol]) - grid.first) / grid.advance - cells[cell]);
  };
  for (size_t i = 0; i < rows; ++i) {
    for (size_t j = 0; j < columns; ++j) {
      if (i == 0 && j == 0) continue;
      double least = std::numeric_limits<double>::max();
      if (i > 0) least = std::min(least, cost(i - 1, j) + kLeftOut);
      if (j > 0) least = std::min(least, cost(i, j - 1) + kLeftOut);
      if (i > 0 && j > 0) least = std::min(least, cost(i - 1, j - 1) + distance(i - 1, j - 1));
      cost(i, j) = least;
    }
  }
  std::vector<std::optional<int>> result(symbols.size());
  for (size_t i = symbols.size(), j = cells.size(); i > 0;) {
    if (j > 0 && cost(i, j) == cost(i - 1, j - 1) + distance(i - 1, j - 1)) {
      result[--i] = cells[--j];
    } else if (j > 0 && cost(i, j) == cost(i, j - 1) + kLeftOut) {
      --j;
    } else {
      --i;
    }
  }
  return result;
}

/// Whether the ink of two cells looks the same, so that the engine took two signs for one.
bool lookAlike(const TextLine& line, const Grid& grid, int a, int b) {
  const auto in = [&](int cell) {
    const double place = grid.first + grid.advance * cell;
    std::set<std::pair<int, int>> ink;
    const int left = static_cast<int>(std::lround(place - grid.advance / 2));
    const int right = static_cast<int>(std::lround(place + grid.advance / 2));
    for (const InkPiece& piece : line.pieces) {
      if (piece.box.right() < left || piece.box.left() >= right) continue;
      for (const InkPiece::Run& run : piece.runs) {
        for (int x = std::max(run.begin, left); x < std::min(run.end, right); ++x) ink.emplace(x - left, run.y);
      }
    }
    return ink;
  };
  const auto first = in(a), second = in(b);
  if (first.empty() || second.empty()) return false;
  for (const int shift : {-1, 0, 1}) {
    const auto common = std::count_if(first.begin(), first.end(), [&](const auto& pixel) {
      return second.contains({pixel.first + shift, pixel.second});
    });
    if (static_cast<double>(common) >= kAlike * static_cast<double>(std::max(first.size(), second.size()))) return true;
  }
  return false;
}

/// Which symbol stands in which cell; signs that were overlooked are added, and ones that were mistaken are mended.
std::map<int, QString> inCells(const TextLine& line, std::vector<ReadSymbol> symbols, const Grid& grid) {
  const std::vector<int> inked = inkedCells(line, grid);
  const auto places = cellsOf(symbols, inked, grid);
  std::map<int, QString> cells;
  int before = inked.empty() ? 0 : inked.front() - 1;
  for (size_t i = 0; i < symbols.size(); ++i) {
    const int place = places[i].value_or(before);
    if (places[i]) symbols[i].left = grid.first + (place - 0.5) * grid.advance;
    if (places[i]) symbols[i].right = symbols[i].left + grid.advance;
    mend(line, symbols[i], grid);
    cells[place] += symbols[i].text;
    before = place;
  }
  for (const int cell : inked) {
    if (const auto sign = barsIn(line, grid, cell)) cells[cell] = QString(QChar(*sign));
    const auto own = cells.find(cell), last = cells.find(cell - 1);
    if (last == cells.end() || (own != cells.end() && own->second == last->second) ||
        !lookAlike(line, grid, cell, cell - 1))
      continue;
    if (own == cells.end()) {
      cells[cell] = last->second;
    } else if (last->second[0].isLetterOrNumber() && !own->second[0].isLetterOrNumber()) {
      last->second = own->second;
    } else if (!last->second[0].isLetterOrNumber() && own->second[0].isLetterOrNumber()) {
      own->second = last->second;
    }
  }
  return cells;
}

QString joined(const std::map<int, QString>& cells, const std::vector<int>& inked) {
  QString text;
  std::optional<int> before;
  for (const auto& [cell, symbol] : cells) {
    for (int empty = before.value_or(cell) + 1; empty < cell; ++empty) {
      if (!std::binary_search(inked.begin(), inked.end(), empty)) text += u' ';
    }
    text += symbol;
    before = cell;
  }
  return text;
}

QString inWords(const TextLine& line, const std::vector<ReadSymbol>& symbols) {
  QString text;
  for (size_t i = 0; i < symbols.size(); ++i) {
    const bool isBesideMark = i > 0 && (symbols[i].isMark || symbols[i - 1].isMark);
    const bool isApart = i > 0 && symbols[i].left - symbols[i - 1].right > kSpace * line.box.height();
    if (i > 0 && (isBesideMark ? isApart : symbols[i].beginsWord)) text += u' ';
    text += symbols[i].text;
  }
  return text;
}

}  // namespace

LineText lineText(const TextLine& line, const std::vector<TextMark>& marks, std::vector<ReadSymbol> symbols) {
  partPlaces(symbols);
  const auto inWordsAlone = [&] { return LineText{inWords(line, withMarks(symbols, certain(marks, symbols, 0), 0))}; };
  auto cells = grid(line, lettersOf(symbols));
  if (!cells) cells = grid(line, withMarks(symbols, certain(marks, symbols, 0), 0));
  if (!cells) return inWordsAlone();
  const auto all = withMarks(symbols, certain(marks, symbols, cells->advance), cells->advance);
  const QString text = joined(inCells(line, all, *cells), inkedCells(line, *cells));
  // Letters may stand like that by chance. Then their spaces do not.
  const auto spaces =
      std::count_if(symbols.begin(), symbols.end(), [](const auto& symbol) { return symbol.beginsWord; });
  const auto found = static_cast<double>(text.simplified().count(QChar(u' ')) + 1);
  return found < kLeastSpaces * static_cast<double>(spaces) ? inWordsAlone() : LineText{text, cells->advance};
}

}  // namespace quillmere
