#pragma once

#include <QtWidgets/QWidget>
#include <functional>
#include <optional>

#include "model/Messages.h"

class QLabel;

namespace quillmere {

class ActionButton;
class SymbolLabel;

/// What is said and offered of a screenshot whose data is not on this machine.
struct DownloadStatusContent {
  enum class Offer { nothing, download, retry };
  QString symbol;
  QString text;
  Offer offer = Offer::nothing;

  /// `canDownload`: its sync client is one that can be asked.
  static DownloadStatusContent make(bool canDownload, std::optional<DownloadState> state);
  bool operator==(const DownloadStatusContent&) const = default;
};

class DownloadStatusRow final : public QWidget {
 public:
  explicit DownloadStatusRow(QWidget* parent);
  void show(const DownloadStatusContent& content);
  std::function<void()> onDownload;

 private:
  SymbolLabel* symbol_;
  QLabel* text_;
  ActionButton* button_;
};

}  // namespace quillmere
