#include "settings/ShortcutRecorder.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QVBoxLayout>

#include "controls/ActionButton.h"
#include "controls/PlainText.h"
#include "foundation/Localized.h"
#include "foundation/SystemEvents.h"
#include "settings/ShortcutField.h"
#include "settings/SymbolNote.h"

namespace quillmere {

ShortcutRecorder::ShortcutRecorder(AppModel& model, SystemEvents* events, QWidget* parent)
    : QWidget(parent),
      model_(model),
      field_(new ShortcutField(this)),
      clear_(new ActionButton(ActionButton::Role::icon, QStringLiteral("xmark.circle.fill"), {}, this)),
      message_(new SymbolNote(this)) {
  field_->onToggle = [this](quint32 heldKey) { toggle(heldKey); };
  clear_->setAccessibleName(localized("Clear Shortcut"));
  clear_->setToolTip(localized("Clear shortcut"));
  // The field stays where it is when there is nothing to clear.
  QSizePolicy policy = clear_->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  clear_->setSizePolicy(policy);
  connect(clear_, &QPushButton::clicked, this, [this] {
    stop();
    set(std::nullopt);
  });
  waiting_.setSingleShot(true);
  connect(&waiting_, &QTimer::timeout, this, [this] { giveUp(); });
  auto* row = new QHBoxLayout;
  row->setSpacing(8);
  row->addWidget(new PlainLabel(localized("Review screenshot"), this));
  row->addStretch();
  row->addWidget(field_);
  row->addWidget(clear_);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(10);
  column->addLayout(row);
  column->addWidget(message_);
  if (!events) return;
  locks_ = events->sessionDidResign.connect([this] { stop(); });
  screens_ = events->screensDidSleep.connect([this] { stop(); });
}

ShortcutRecorder::~ShortcutRecorder() {
  stop();
}

void ShortcutRecorder::refresh() {
  const auto& shortcut = *model_.settings().hotKeyShortcut;
  const KeyboardLayout& layout = model_.hotKeys().layout();
  ShortcutField::Content content{localized("None"), localized("None"), isRecording_};
  if (isRecording_) {
    content.title = localized("Type shortcut…");
    content.value = localized("Recording");
  } else if (shortcut) {
    content.title = shortcut->symbols(layout);
    content.value = shortcut->spelledOut(layout);
  }
  field_->show(content);
  clear_->setVisible(shortcut.has_value());
}

void ShortcutRecorder::toggle(quint32 heldKey) {
  isRecording_ ? stop() : start(heldKey);
}

void ShortcutRecorder::start(quint32 heldKey) {
  giveBack();
  isRecording_ = hasKeyboard_ = true;
  if (heldKey != 0) {
    downKeys_.insert(heldKey);
    readKeys_.insert(heldKey);
  }
  message_->clear();
  model_.setHotKeysSuspended(true);
  QCoreApplication::instance()->installEventFilter(this);
  takeKeyboard(true);
  waiting_.start(patience.key);
  announce(localized("Recording shortcut. Type a key combination. Press Escape to cancel or Delete to clear."));
  refresh();
}

void ShortcutRecorder::finish() {
  if (!std::exchange(isRecording_, false)) return;
  message_->clear();
  readKeys_.empty() ? giveBack() : waiting_.start(patience.release);
  refresh();
}

void ShortcutRecorder::giveBack() {
  waiting_.stop();
  downKeys_.clear();
  readKeys_.clear();
  if (!std::exchange(hasKeyboard_, false)) return;
  QCoreApplication::instance()->removeEventFilter(this);
  takeKeyboard(false);
  model_.setHotKeysSuspended(false);
}

void ShortcutRecorder::stop() {
  finish();
  giveBack();
}

/// Nobody types any more, or a release was lost.
void ShortcutRecorder::giveUp() {
  const bool wasRecording = isRecording_;
  stop();
  if (wasRecording) announce(localized("Shortcut recording canceled"));
}

void ShortcutRecorder::takeKeyboard(bool takes) {
  // Where the display gives it to nobody, what reaches the window is recorded.
  if (QWindow* window = this->window()->windowHandle()) window->setKeyboardGrabEnabled(takes);
}

void ShortcutRecorder::set(const std::optional<HotKeyShortcut>& shortcut) {
  finish();
  model_.setHotKeyShortcut(shortcut);
  refresh();
  announce(shortcut ? localized("Shortcut set to %@", {shortcut->spelledOut(model_.hotKeys().layout())})
                    : localized("Shortcut cleared"));
}

bool ShortcutRecorder::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate) stop();
  return QWidget::event(event);
}

void ShortcutRecorder::hideEvent(QHideEvent* event) {
  stop();
  QWidget::hideEvent(event);
}

bool ShortcutRecorder::isOfWindow(const QObject& watched) const {
  if (watched.isWindowType()) return &watched == window()->windowHandle();
  return watched.isWidgetType() && static_cast<const QWidget&>(watched).window() == window();
}

bool ShortcutRecorder::eventFilter(QObject* watched, QEvent* event) {
  if (!isOfWindow(*watched)) return false;
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (!isRecording_ && !readKeys_.contains(static_cast<QKeyEvent&>(*event).nativeScanCode())) return false;
      event->accept();
      return true;
    case QEvent::KeyPress:
      return take(static_cast<QKeyEvent&>(*event));
    case QEvent::KeyRelease:
      // Goes on: a key may have been pressed before. Some displays tell a repeat as a release and a press.
      if (const auto& key = static_cast<QKeyEvent&>(*event); !key.isAutoRepeat()) release(key.nativeScanCode());
      return false;
    case QEvent::MouseButtonPress: {
      // Whoever turns to another control with the pointer has left this one.
      const bool isOurs = watched == field_ || watched == clear_ || watched->isWindowType();
      if (!isOurs && static_cast<QWidget*>(watched)->focusPolicy() != Qt::NoFocus) stop();
      return false;
    }
    default:
      return false;
  }
}

/// Whether nobody else is to see the key. Those that go on come here twice, for the window and for what has the focus
/// in it; the second time they are repeats. A repeat goes where its key went: Space that is held presses no button.
bool ShortcutRecorder::take(const QKeyEvent& event) {
  const quint32 scanCode = event.nativeScanCode();
  if (!isRecording_) return readKeys_.contains(scanCode);
  const bool isRepeat = !downKeys_.insert(scanCode).second || event.isAutoRepeat();
  // What lies on a key is not somebody who types.
  if (!isRepeat) waiting_.start(patience.key);
  auto key = KeyDown::of(event, model_.hotKeys().layout());
  if (!key) return true;
  key->isRepeat = isRepeat;
  const RecordedKey recorded = RecordedKey::of(*key);
  if (recorded.kind == RecordedKey::Kind::ignore) return readKeys_.contains(scanCode);
  if (recorded.kind != RecordedKey::Kind::pass) readKeys_.insert(scanCode);
  return apply(recorded);
}

void ShortcutRecorder::release(quint32 scanCode) {
  downKeys_.erase(scanCode);
  readKeys_.erase(scanCode);
  if (!isRecording_ && readKeys_.empty()) giveBack();
}

bool ShortcutRecorder::apply(const RecordedKey& key) {
  using Kind = RecordedKey::Kind;
  message_->clear();
  switch (key.kind) {
    case Kind::ignore:
    case Kind::pass:
      return false;
    case Kind::cancel:
      finish();
      announce(localized("Shortcut recording canceled"));
      return true;
    case Kind::clear:
      set(std::nullopt);
      return true;
    case Kind::shortcut:
      set(key.shortcut);
      return true;
    case Kind::unusable:
      warn(localized("This key can’t be used. Choose a different shortcut."));
      return true;
    case Kind::issue:
      warn(localized("%@ can’t be used. %@", {key.shortcut.symbols(model_.hotKeys().layout()), message(*key.issue)}));
      return true;
  }
  return false;
}

void ShortcutRecorder::warn(const QString& text) {
  message_->show(QStringLiteral("exclamationmark.triangle"), Ink::warning, text);
  announce(text);
}

void ShortcutRecorder::announce(const QString& text) const {
  model_.announce(text, AnnouncementPriority::high);
}

}  // namespace quillmere
