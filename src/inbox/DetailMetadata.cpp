#include "inbox/DetailMetadata.h"

#include <QtCore/QLocale>
#include <QtWidgets/QVBoxLayout>

#include "controls/WrappingRow.h"
#include "foundation/Localized.h"
#include "inbox/CaptureKindLabel.h"
#include "inbox/ScreenshotStatus.h"
#include "inbox/ShowOriginalButton.h"
#include "inbox/SymbolRow.h"

namespace quillmere {
namespace {

constexpr int kBetweenFacts = 14;
constexpr int kBetweenNotes = 6;

QString shortTime(Date date) {
  return QLocale().toString(date.toDateTime().toLocalTime(), QLocale::ShortFormat);
}

QString statusOf(const ScreenshotItem& item) {
  const bool isTemporary = item.state == ScreenshotItem::State::temporary && item.expiresAt;
  return isTemporary ? localized("Temporary until %@", {shortTime(*item.expiresAt)}) : statusText(item.state);
}

}  // namespace

DetailMetadata::DetailMetadata(QWidget* parent)
    : QWidget(parent),
      date_(new SymbolRow(Ink::secondary, SymbolRow::Wrapping::none, this)),
      status_(new SymbolRow(Ink::secondary, SymbolRow::Wrapping::none, this)),
      kind_(new CaptureKindLabel(this)),
      notesColumn_(new QVBoxLayout) {
  auto* facts = new WrappingRow(kBetweenFacts);
  facts->setLineSpacing(kBetweenNotes);
  for (QWidget* fact : {date_, status_, static_cast<SymbolRow*>(kind_)}) facts->addWidget(fact);
  notesColumn_->setSpacing(kBetweenNotes);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(10);
  column->addLayout(facts);
  column->addLayout(notesColumn_);
}

void DetailMetadata::show(const ScreenshotItem& item, const DetailState& state) {
  date_->show(QStringLiteral("calendar"), shortTime(item.createdAt));
  status_->show(statusSymbol(item.state), statusOf(item));
  if (item.captureKind) {
    kind_->show(*item.captureKind);
  } else {
    kind_->hide();
  }
  showNotes(detailNotes(item, state));
}

/// Rows that say the same stay, and with them the keyboard and what a screen reader is at.
void DetailMetadata::showNotes(std::vector<DetailNote> notes) {
  if (notes == notes_) return;
  for (QWidget* row : noteRows_) {
    row->hide();
    notesColumn_->removeWidget(row);
    row->deleteLater();
  }
  noteRows_.clear();
  notes_ = std::move(notes);
  for (const DetailNote& note : notes_) {
    noteRows_.push_back(makeNote(note));
    notesColumn_->addWidget(noteRows_.back());
    noteRows_.back()->setVisible(true);
  }
  updateGeometry();
}

QWidget* DetailMetadata::makeNote(const DetailNote& note) {
  if (note.kind == DetailNote::Kind::original) {
    auto* button = new ShowOriginalButton(this);
    button->setOriginal(note.text);
    connect(button, &QPushButton::clicked, this, [this] {
      if (onShowOriginal) onShowOriginal();
    });
    return button;
  }
  const Ink ink = note.kind == DetailNote::Kind::warning ? Ink::warning : Ink::secondary;
  auto* row = new SymbolRow(ink, SymbolRow::Wrapping::words, this);
  row->show(note.symbol, note.text);
  return row;
}

}  // namespace quillmere
