#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "popup/CapturePromptContent.h"

class QLineEdit;

namespace quillmere {

class AnalysisStatusRow;
class PromptFilenameField;
class ThemedLabel;

/// What the screenshot shows, in words, and the name that it is to have.
class PromptDetails final : public QWidget {
 public:
  explicit PromptDetails(QWidget* parent);

  void show(const CapturePromptContent& content);
  QLineEdit& nameField() const;
  QWidget& description() const;
  QWidget& analysisButton() const;
  QWidget& moreButton() const;

  std::function<void()> onAnalyze;
  /// The whole description is wanted.
  std::function<void()> onMore;
  std::function<void()> onNameChanged;
  /// The name has become one that will not be taken.
  std::function<void(const QString& note)> onNameRefused;

 private:
  QWidget* makeNameBlock();
  void refreshCaption();
  void refreshNote();

  AnalysisStatusRow* analysis_;
  ThemedLabel* caption_ = nullptr;
  std::optional<QString> note_;
  PromptFilenameField* nameField_ = nullptr;
  ThemedLabel* extension_ = nullptr;
};

}  // namespace quillmere
