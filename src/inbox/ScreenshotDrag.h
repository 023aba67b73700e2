#pragma once

#include "inbox/InboxPresentation.h"

class QPixmap;

namespace quillmere {

/// Lets the person drag the files of these records into another application; returns when they were dropped or the drag
/// was given up. Others get copies: the files stay. Records whose files cannot be had now are left out. `picture` goes
/// with the pointer, with the number of files where there are several.
void dragScreenshots(QWidget& source, AppModel& model, const std::vector<UUID>& ids, const QPixmap& picture);

}  // namespace quillmere
