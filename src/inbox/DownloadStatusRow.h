#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <optional>

#include "model/Messages.h"

namespace quillmere {

class ActionButton;
class SymbolLabel;
class ThemedLabel;
class WorkIndicator;

/// What is said and offered of a screenshot whose data is not on this machine.
struct DownloadStatusContent {
  enum class Offer { nothing, download, retry };
  QString symbol;
  QString text;
  Offer offer = Offer::nothing;
  bool isUnderWay = false;

  /// `canDownload`: its sync client is one that can be asked.
  static DownloadStatusContent make(bool canDownload, std::optional<DownloadState> state);
  bool operator==(const DownloadStatusContent&) const = default;
};

/// With it always the way to the file itself, where its sync client's own menu is.
class DownloadStatusRow final : public QWidget {
 public:
  explicit DownloadStatusRow(QWidget* parent);
  void show(const DownloadStatusContent& content);
  std::function<void()> onDownload;
  std::function<void()> onShowInFinder;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  SymbolLabel* symbol_;
  WorkIndicator* ring_;  ///< in the symbol's place while data comes
  ThemedLabel* text_;
  ActionButton* download_;
  ActionButton* retry_;
  ActionButton* showInFinder_;
};

}  // namespace quillmere
