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
    /// Also where it has more lines than the row's limit.
    bool isWhole = false;
  };
  void show(const Content& content);
  /// Longer texts end in an ellipsis, and a button asks for the rest. `width` is the row's, in points.
  void setLimit(int lines, int width);
  std::function<void()> onAnalyze;
  std::function<void()> onMore;
  /// What takes the keyboard, for the order of a window's controls.
  QWidget& text() const;
  QWidget& button() const;
  QWidget& moreButton() const;

 private:
  QString shownText(const Content& content);
  SymbolLabel* symbol_;
  QLabel* text_;
  ActionButton* button_;
  ActionButton* more_;
  int limit_ = 0;  // lines; none at 0
  int width_ = 0;
};

}  // namespace quillmere
