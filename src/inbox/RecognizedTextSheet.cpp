#include "inbox/RecognizedTextSheet.h"

#include <QtCore/QEvent>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/ThemedLabel.h"
#include "controls/WorkIndicator.h"
#include "foundation/Localized.h"
#include "inbox/MessageView.h"
#include "inbox/RecognizedTextView.h"

namespace quillmere {
namespace {

constexpr int kButton = 84;
constexpr QSize kMost{900, 900};
/// Of the window's size.
constexpr double kShare = 0.75;
constexpr QSize kShadow{2 * PopupSurface::kReach, 2 * PopupSurface::kReach};

}  // namespace

RecognizedTextSheet::RecognizedTextSheet(QWidget* window)
    : CardDialog(localized("Recognized Text"), window),
      pages_(new QStackedWidget(this)),
      waiting_(makeWaiting()),
      nothing_(new MessageView({QStringLiteral("text.viewfinder"),
                                localized("No Text Found"),
                                localized("Quillmere didn’t recognize any text in this screenshot."),
                                {}},
                               pages_)),
      found_(new RecognizedTextView(pages_)) {
  auto* heading = new ThemedLabel(Ink::text, this, localized("Recognized Text"));
  heading->setTextSize(1.12, QFont::DemiBold);
  setAccessibleRole(*heading, QAccessible::Heading);
  heading->lower();
  for (QWidget* page : {waiting_, static_cast<QWidget*>(nothing_), static_cast<QWidget*>(found_)}) {
    pages_->addWidget(page);
  }
  using Role = ActionButton::Role;
  copy_ = new ActionButton(Role::secondary, QStringLiteral("document.on.document"), localized("Copy Text"), this);
  copy_->setToolTip(localized("Copy all of this text to the clipboard"));
  done_ = new ActionButton(Role::primary, {}, localized("Done"), this);
  done_->setMinimumWidth(kButton);
  done_->setDefault(true);
  connect(copy_, &QPushButton::clicked, this, [this] {
    if (onCopy) onCopy(text_);
  });
  connect(done_, &QPushButton::clicked, this, &QDialog::accept);
  found_->onCopy = [this](const QString& selected) {
    if (onCopy) onCopy(selected);
  };

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addStretch();
  buttons->addWidget(copy_);
  buttons->addWidget(done_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargins);
  column->setSpacing(14);
  column->addWidget(heading);
  column->addWidget(pages_, 1);
  column->addLayout(buttons);
  setMinimumSize(kLeast + kShadow);
  if (window) window->installEventFilter(this);
  fitToWindow();
}

QWidget* RecognizedTextSheet::makeWaiting() {
  auto* page = new QWidget(pages_);
  auto* row = new QHBoxLayout(page);
  row->setSpacing(10);
  row->addStretch();
  row->addWidget(new WorkIndicator(page));
  row->addWidget(new ThemedLabel(Ink::secondary, page, localized("Reading text…")));
  row->addStretch();
  return page;
}

void RecognizedTextSheet::show(const std::optional<QString>& text, bool isExtracting) {
  text_ = text.value_or(QString());
  const bool hasText = !text_.isEmpty() && !isExtracting;
  QWidget* page = isExtracting ? waiting_ : hasText ? static_cast<QWidget*>(found_) : nothing_;
  if (hasText) found_->setText(text_);
  copy_->setEnabled(hasText);
  pages_->setCurrentWidget(page);
  // Where the arrow keys scroll; a change of the text leaves the keyboard where it is.
  if (!focusWidget() || !focusWidget()->isEnabled()) (hasText ? static_cast<QWidget*>(found_) : done_)->setFocus();
}

void RecognizedTextSheet::fitToWindow() {
  const QWidget* window = parentWidget();
  if (!window) return;
  const QSize wanted = (QSizeF(window->window()->size()) * kShare).toSize();
  resize(wanted.boundedTo(kMost).expandedTo(kLeast) + kShadow);
}

bool RecognizedTextSheet::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget() && event->type() == QEvent::Resize) fitToWindow();
  return CardDialog::eventFilter(watched, event);
}

}  // namespace quillmere
