#pragma once

#include <QtCore/QSize>
#include <vector>

#include "recognition/TextLines.h"

namespace quillmere {

/// Drops the pieces that stand where a photograph's grain does: specks close together in no rows. What stands beside it
/// is kept, and of all others no more than `most`, without the most crowded places.
void dropCrowded(std::vector<InkPiece>& pieces, QSize imageSize, size_t most);

}  // namespace quillmere
