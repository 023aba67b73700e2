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

  struct Content {
    QString text;
    bool isFailure = false;
    bool offersAnalysis = false;
    /// Then it can be selected, by keyboard too.
    bool isDescription = false;
  };
  void show(const Content& content);
  std::function<void()> onAnalyze;
  /// What takes the keyboard, for the order of a window's controls.
  QWidget& text() const;
  QWidget& button() const;

 private:
  SymbolLabel* symbol_;
  QLabel* text_;
  ActionButton* button_;
};

}  // namespace quillmere
