#pragma once

class QWidget;

namespace quillmere {

/// Where a question or a panel belongs that is asked from `window`: a dialog that holds up nothing, as a popover or the
/// updater's, may go by itself and would take the question with it, which then belongs to the window below. Null where
/// there is none.
QWidget* placeForQuestionOver(QWidget* window);

/// The same of the window that has the keyboard.
QWidget* placeForQuestionOverActive();

}  // namespace quillmere
