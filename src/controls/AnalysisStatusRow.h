#pragma once

#include <QtWidgets/QWidget>
#include <functional>

class QLabel;

namespace quillmere {

class ActionButton;
class SymbolLabel;

/// The one line about what analysis made of a screenshot: its description, or why there is none.
class AnalysisStatusRow final : public QWidget {
 public:
  explicit AnalysisStatusRow(QWidget* parent);

  void show(const QString& text, bool isFailure, bool offersAnalysis);
  std::function<void()> onAnalyze;
  /// What of it takes the keyboard, for the order of a window's controls.
  QWidget* control() const;

 private:
  SymbolLabel* symbol_;
  QLabel* text_;
  ActionButton* button_;
};

}  // namespace quillmere
