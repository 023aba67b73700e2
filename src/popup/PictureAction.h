#pragma once

#include <QtCore/QString>
#include <functional>
#include <vector>

class QWidget;

namespace quillmere {

/// What can be done with the picture: on the preview, or in a row of its own where no preview shows it.
enum class PictureAction { copyText, share };

/// How an action looks in either place. What it does stands in `CapturePromptView::run`.
struct PictureActionTraits {
  PictureAction action;
  QString symbol;
  QString name;
  QString toolTipOnPreview;
  QString hintOnPreview;  ///< what a screen reader tells of a button without a text
  QString toolTipInRow;
};
/// In the order in which they stand.
std::vector<PictureActionTraits> pictureActions();

/// The button was pressed, at which a menu opens.
using OnPictureAction = std::function<void(PictureAction action, QWidget& button)>;

}  // namespace quillmere
