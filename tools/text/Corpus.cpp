#include "Corpus.h"

#include <algorithm>

namespace corpus {

QString name(Theme theme) {
  return theme == Theme::light ? "light" : theme == Theme::dark ? "dark" : "mixed";
}

QStringList lines(std::vector<Fragment> fragments) {
  struct Line {
    QRectF box;
    QString text;
  };
  std::stable_sort(fragments.begin(), fragments.end(),
                   [](const Fragment& a, const Fragment& b) { return a.box.left() < b.box.left(); });
  std::vector<Line> found;
  for (const Fragment& fragment : fragments) {
    if (fragment.text.trimmed().isEmpty()) continue;
    // What is painted in parts, or with a shadow, comes more than once.
    const auto isTheSame = [&](const Fragment& other) {
      return other.text == fragment.text && (other.box.topLeft() - fragment.box.topLeft()).manhattanLength() < 4;
    };
    if (std::any_of(static_cast<const Fragment*>(fragments.data()), &fragment, isTheSame)) continue;
    const double height = fragment.box.height();
    const auto continued = std::find_if(found.begin(), found.end(), [&](const Line& line) {
      const double gap = fragment.box.left() - line.box.right();
      const double overlap =
          std::min(line.box.bottom(), fragment.box.bottom()) - std::max(line.box.top(), fragment.box.top());
      return gap > -2 && gap < 0.8 * height && overlap > 0.6 * std::min(height, line.box.height());
    });
    if (continued == found.end()) {
      found.push_back({fragment.box, fragment.text});
      continue;
    }
    if (fragment.box.left() - continued->box.right() > 0.15 * height) continued->text += ' ';
    continued->text += fragment.text;
    continued->box |= fragment.box;
  }
  std::stable_sort(found.begin(), found.end(), [](const Line& a, const Line& b) {
    const double aMiddle = a.box.center().y(), bMiddle = b.box.center().y();
    return aMiddle != bMiddle ? aMiddle < bMiddle : a.box.left() < b.box.left();
  });
  QStringList texts;
  for (const Line& line : found) texts += line.text.simplified();
  return texts;
}

}  // namespace corpus
