#include "settings/SettingsWindow.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QVBoxLayout>

#include "controls/Alert.h"
#include "foundation/Localized.h"
#include "settings/GeneralPane.h"
#include "settings/IntelligencePane.h"
#include "settings/KeyboardPane.h"
#include "settings/PanePage.h"
#include "settings/PopupPane.h"
#include "settings/ScreenshotsPane.h"

namespace quillmere {
namespace {

constexpr int kWidth = 580;
/// What the window manager puts around a window whose frame is not known yet.
constexpr int kFrame = 40;
const QString kLastPane = QStringLiteral("quillmere.settings-pane");

/// What the tabs and their frame take of the height. They are laid out only once they are seen.
int heightAround(const QTabWidget& tabs) {
  constexpr int kAny = 1000;
  QStyleOptionTabWidgetFrame option;
  option.initFrom(&tabs);
  option.tabBarSize = tabs.tabBar()->sizeHint();
  option.shape = tabs.tabBar()->shape();
  option.rect = QRect(0, 0, kAny, kAny);
  return kAny - tabs.style()->subElementRect(QStyle::SE_TabWidgetTabContents, &option, &tabs).height();
}

}  // namespace

SettingsWindow::SettingsWindow(AppModel& model, SettingsServices services)
    : model_(model), services_(std::move(services)), tabs_(new QTabWidget(this)) {
  setWindowTitle(localized("Settings"));
  tabs_->setDocumentMode(true);
  addPane("general", new GeneralPane(model, services_, this), localized("General"));
  addPane("screenshots", new ScreenshotsPane(model, services_, this), localized("Screenshots"));
  addPane("popup", new PopupPane(model, this), localized("Popup"));
  addPane("keyboard", new KeyboardPane(model, services_, this), localized("Keyboard"));
  addPane("intelligence", new IntelligencePane(model, this), localized("Intelligence"));
  showLastPane();
  connect(tabs_, &QTabWidget::currentChanged, this, [this](int index) {
    rememberPane(index);
    appear();
  });
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 8, 0, 0);
  column->addWidget(tabs_);
  changes_ = model.changed.connect([this](const ModelChange& change) { follow(change); });
}

void SettingsWindow::addPane(const char* key, SettingsPane* pane, const QString& title) {
  auto* page = new PanePage(pane, tabs_);
  tabs_->addTab(page, title);
  panes_.push_back(pane);
  keys_.push_back(QLatin1String(key));
}

void SettingsWindow::showLastPane() {
  if (!services_.defaults) return;
  const auto last = services_.defaults->text(kLastPane);
  const auto found = std::find(keys_.begin(), keys_.end(), last.value_or(QString()));
  if (found != keys_.end()) tabs_->setCurrentIndex(static_cast<int>(found - keys_.begin()));
}

void SettingsWindow::rememberPane(int index) {
  if (services_.defaults) services_.defaults->set(kLastPane, keys_[static_cast<size_t>(index)]);
}

void SettingsWindow::follow(const ModelChange& change) {
  if (change.field == ModelField::settingsError) {
    showErrorLater();
  } else if (isVisible()) {
    for (SettingsPane* pane : panes_) {
      if (!pane->shows(change.field)) continue;
      pane->refresh();
      makeRoom();
    }
  }
}

void SettingsWindow::appear() {
  if (isVisible()) panes_[static_cast<size_t>(tabs_->currentIndex())]->appear();
}

bool SettingsWindow::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate) appear();
  return QWidget::event(event);
}

void SettingsWindow::showEvent(QShowEvent* event) {
  refresh();
  QWidget::showEvent(event);
  if (!event->spontaneous()) panes_[static_cast<size_t>(tabs_->currentIndex())]->appear();
  // One that no window was there to tell.
  if (*model_.settingsError) showErrorLater();
}

void SettingsWindow::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Close) || event->key() == Qt::Key_Escape) {
    close();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void SettingsWindow::refresh() {
  for (SettingsPane* pane : panes_) pane->refresh();
  makeRoom();
}

/// As large as the pane that needs the most: texts that wrap tell no layout above them how high they become.
void SettingsWindow::makeRoom() {
  ensurePolished();
  int width = std::max(kWidth, tabs_->tabBar()->sizeHint().width());
  for (SettingsPane* pane : panes_) {
    pane->layout()->activate();
    width = std::max(width, pane->layout()->totalMinimumSize().width());
  }
  int highest = 0;
  for (SettingsPane* pane : panes_) highest = std::max(highest, pane->layout()->totalHeightForWidth(width));
  const QSize around(0, layout()->contentsMargins().top() + heightAround(*tabs_));
  QSize available = screen()->availableGeometry().size();
  available -= isVisible() && frameSize() != size() ? frameSize() - size() : QSize(0, kFrame);
  QSize needed = QSize(width, highest) + around;
  // Beside the bar that scrolls the texts keep their width.
  if (needed.height() > available.height()) needed += QSize(style()->pixelMetric(QStyle::PM_ScrollBarExtent), 0);
  setFixedSize(needed.boundedTo(available));
  keepOnScreen();
}

/// A window that grew may reach beyond the lower edge.
void SettingsWindow::keepOnScreen() {
  const QRect available = screen()->availableGeometry();
  const int beyond = frameGeometry().bottom() - available.bottom();
  if (isVisible() && beyond > 0) move(pos() - QPoint(0, std::min(beyond, std::max(0, y() - available.top()))));
}

/// In a later turn: the failing operation must be over before its message waits for an answer.
void SettingsWindow::showErrorLater() {
  QMetaObject::invokeMethod(
      this, [this] { showError(); }, Qt::QueuedConnection);
}

void SettingsWindow::showError() {
  const auto error = *model_.settingsError;
  if (!error) return;
  model_.dismissError(ErrorScope::settings);
  showAlert(this, error->title, error->message);
}

}  // namespace quillmere
