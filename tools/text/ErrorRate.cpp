#include "ErrorRate.h"

#include <algorithm>
#include <string>
#include <vector>

namespace corpus {
namespace {

std::u32string plain(const QString& line) {
  std::u32string text;
  for (const uint character : line.simplified().toUcs4()) {
    switch (character) {
      case 0x2018:
      case 0x2019:
        text += U'\'';
        break;
      case 0x201c:
      case 0x201d:
        text += U'"';
        break;
      case 0x2013:
      case 0x2014:
        text += U'-';
        break;
      case 0x2026:
        text += U"...";
        break;
      default:
        text += static_cast<char32_t>(character);
    }
  }
  return text;
}

struct Alignment {
  int score = 0;
  size_t errors = 0;
  size_t truthBegin = 0, truthEnd = 0;
  size_t readBegin = 0, readEnd = 0;
};

Alignment align(const std::u32string& truth, const std::u32string& read) {
  struct Cell {
    int score = 0;
    int errors = 0;
    int truthBegin = 0;
    int readBegin = 0;
  };
  const int rows = static_cast<int>(truth.size()), columns = static_cast<int>(read.size());
  std::vector<Cell> above(columns + 1), row(columns + 1);
  Alignment best;
  for (int j = 0; j <= columns; ++j) above[j] = {0, 0, 0, j};
  for (int i = 1; i <= rows; ++i) {
    row[0] = {0, 0, i, 0};
    for (int j = 1; j <= columns; ++j) {
      const bool agrees = truth[i - 1] == read[j - 1];
      Cell cell = above[j - 1];
      cell.score += agrees ? 1 : -1;
      cell.errors += agrees ? 0 : 1;
      for (const Cell& other : {above[j], row[j - 1]}) {
        if (other.score - 1 > cell.score) {
          cell = other;
          --cell.score;
          ++cell.errors;
        }
      }
      if (cell.score <= 0) cell = {0, 0, i, j};
      row[j] = cell;
      if (cell.score > best.score) {
        best = {cell.score,
                static_cast<size_t>(cell.errors),
                static_cast<size_t>(cell.truthBegin),
                static_cast<size_t>(i),
                static_cast<size_t>(cell.readBegin),
                static_cast<size_t>(j)};
      }
    }
    std::swap(above, row);
  }
  return best;
}

size_t length(const std::u32string& text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char32_t c) { return c != U' '; }));
}

std::vector<std::u32string> rest(const std::u32string& text, size_t begin, size_t end) {
  std::vector<std::u32string> parts;
  for (const std::u32string& part : {text.substr(0, begin), text.substr(end)}) {
    if (length(part)) parts.push_back(part);
  }
  return parts;
}

}  // namespace

Errors errors(const QStringList& truth, const QStringList& recognized) {
  std::vector<std::u32string> truths, reads;
  Errors result;
  for (const QString& line : truth) {
    if (const auto text = plain(line); !text.empty()) truths.push_back(text);
  }
  for (const auto& line : truths) result.characters += line.size();
  for (const QString& line : recognized) {
    if (const auto text = plain(line); !text.empty()) reads.push_back(text);
  }
  std::vector<std::vector<Alignment>> table;
  for (const auto& line : truths) {
    auto& row = table.emplace_back();
    for (const auto& read : reads) row.push_back(align(line, read));
  }
  while (true) {
    int score = 0;
    size_t t = 0, r = 0;
    for (size_t i = 0; i < truths.size(); ++i) {
      for (size_t j = 0; j < reads.size(); ++j) {
        if (table[i][j].score > score) {
          score = table[i][j].score;
          t = i;
          r = j;
        }
      }
    }
    // Two or fewer characters agree everywhere by chance, unless they are all there is.
    if (score == 0) break;
    const Alignment best = table[t][r];
    if (score < 3 && length(truths[t]) > static_cast<size_t>(score) && length(reads[r]) > static_cast<size_t>(score)) {
      table[t][r].score = 0;
      continue;
    }
    result.wrong += best.errors;
    const auto truthRest = rest(truths[t], best.truthBegin, best.truthEnd);
    const auto readRest = rest(reads[r], best.readBegin, best.readEnd);
    truths.erase(truths.begin() + static_cast<std::ptrdiff_t>(t));
    table.erase(table.begin() + static_cast<std::ptrdiff_t>(t));
    reads.erase(reads.begin() + static_cast<std::ptrdiff_t>(r));
    for (auto& row : table) row.erase(row.begin() + static_cast<std::ptrdiff_t>(r));
    for (const auto& part : readRest) {
      reads.push_back(part);
      for (size_t i = 0; i < truths.size(); ++i) table[i].push_back(align(truths[i], part));
    }
    for (const auto& part : truthRest) {
      truths.push_back(part);
      auto& row = table.emplace_back();
      for (const auto& read : reads) row.push_back(align(part, read));
    }
  }
  size_t missing = 0, excess = 0;
  for (const auto& line : truths) missing += length(line);
  for (const auto& line : reads) excess += length(line);
  result.wrong += std::max(missing, excess);
  return result;
}

}  // namespace corpus
