#pragma once

#include <QtCore/QPointer>

#include "controls/Alert.h"
#include "editor/ImageEditorView.h"
#include "inbox/InboxPresentation.h"
#include "inbox/RecognizedTextSheet.h"

namespace quillmere {

/// Opens over the Inbox what its presentation asks for, and closes it when that is over: the question whether to
/// delete, the text in a screenshot, and the crop editor. Nothing waits for them but the window below. Goes before the
/// presentation.
class InboxSheets {
 public:
  InboxSheets(InboxPresentation& presentation, QWidget& window);
  ~InboxSheets();

  Alert* question() const { return question_; }
  RecognizedTextSheet* text() const { return text_; }
  ImageEditorView* editor() const { return editor_; }

 private:
  void follow(InboxField field);
  void follow(const ModelChange& change);
  void askWhetherToDelete();
  void closeQuestion();
  void showText();
  void refreshText();
  void closeText();
  void showEditor();
  void closeEditor();

  InboxPresentation& presentation_;
  QWidget& window_;
  QPointer<Alert> question_;
  QPointer<RecognizedTextSheet> text_;
  QPointer<ImageEditorView> editor_;
  Connection requests_;
  Connection records_;
};

}  // namespace quillmere
