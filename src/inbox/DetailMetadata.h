#pragma once

#include <QtWidgets/QWidget>
#include <functional>

#include "inbox/DetailNotes.h"

class QVBoxLayout;

namespace quillmere {

class CaptureKindLabel;
class SymbolRow;

/// When a screenshot was taken, what becomes of it and of what it is; below that what else there is to say of it.
class DetailMetadata final : public QWidget {
 public:
  explicit DetailMetadata(QWidget* parent);
  void show(const ScreenshotItem& item, const DetailState& state);
  std::function<void()> onShowOriginal;

 private:
  void showNotes(std::vector<DetailNote> notes);
  QWidget* makeNote(const DetailNote& note);

  SymbolRow* date_;
  SymbolRow* status_;
  CaptureKindLabel* kind_;
  QVBoxLayout* notesColumn_;
  std::vector<DetailNote> notes_;
  std::vector<QWidget*> noteRows_;
};

}  // namespace quillmere
