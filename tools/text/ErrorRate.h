#pragma once

#include <QtCore/QStringList>
#include <cstddef>

namespace corpus {

struct Errors {
  size_t wrong = 0;
  size_t characters = 0;  ///< of the truth
  double rate() const { return characters ? static_cast<double>(wrong) / static_cast<double>(characters) : 0; }
};

/// The character errors of what was recognised against the true lines, whatever order either comes in and wherever a
/// row was cut into columns. The pair of lines that agrees best, by local alignment (+1 for a character that agrees, -1
/// for one that does not or that is missing), is taken out again and again; what is left of the two before and after
/// the alignment takes part again. The errors are the wrong characters within the alignments, and of the characters
/// left over, those of the truth or those recognised, whichever are more. White space counts as one space a run;
/// typographic quotes and dashes count as plain ones.
Errors errors(const QStringList& truth, const QStringList& recognized);

}  // namespace corpus
