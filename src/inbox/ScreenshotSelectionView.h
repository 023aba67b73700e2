#pragma once

#include <QtWidgets/QScrollArea>

#include "inbox/InboxPresentation.h"

class QVBoxLayout;

namespace quillmere {

class ActionButton;
class SymbolRow;
class TextExtractionProgress;
class ThemedLabel;
enum class ScreenshotCommand;

/// What several selected screenshots are together, and what can be done with all of them.
class ScreenshotSelectionView final : public QScrollArea {
 public:
  ScreenshotSelectionView(AppModel& model, InboxPresentation& presentation, QWidget* parent);
  /// The selection, its records or what can be done with them may have changed. It is counted once before it is next
  /// drawn, however often this was called.
  void update();

 protected:
  bool event(QEvent* event) override;

 private:
  QWidget* makeButtons(QWidget* page);
  ActionButton* makeButton(ScreenshotCommand command, QWidget* parent);
  void count();
  void showButtons();

  AppModel& model_;
  InboxPresentation& presentation_;
  bool isCountDue_ = false;
  ThemedLabel* heading_;
  std::vector<SymbolRow*> lines_;
  TextExtractionProgress* progress_;
  ActionButton* keep_;
  ActionButton* temporary_;
  ActionButton* trash_;
  Connection changes_;
};

}  // namespace quillmere
