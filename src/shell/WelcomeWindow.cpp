#include "shell/WelcomeWindow.h"

#include <QtCore/QPointer>
#include <QtGui/QPainter>
#include <QtWidgets/QBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/Grounds.h"
#include "controls/Metrics.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"
#include "foundation/Localized.h"

namespace quillmere {
namespace {

constexpr int kLetters = 66;
constexpr int kIcon = 80;
constexpr int kFactSymbol = 24;
constexpr int kSymbol = 18;

/// The quiet ground of what is said beside the facts.
class Note final : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent*) override {
    const Theme theme(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintGround(painter, rect(), Radius::kSurface, theme.fill, theme);
  }
};

ThemedLabel* wrapped(Ink ink, QWidget* parent, const QString& text) {
  auto* label = new ThemedLabel(ink, parent, text);
  label->setWordWrap(true);
  return label;
}

QLayout* makeRow(int points, const QString& symbol, Qt::Alignment alignment, QLabel* text) {
  auto* row = new QHBoxLayout;
  row->setSpacing(12);
  row->addWidget(new SymbolLabel(points, Ink::secondary, text->parentWidget(), symbol), 0, alignment);
  row->addWidget(text, 1);
  return row;
}

}  // namespace

WelcomeWindow::WelcomeWindow(Actions actions, DesktopTray& tray)
    : SmallWindow(localized("Welcome to Quillmere"), kLetters), actions_(std::move(actions)) {
  auto* title = new ThemedLabel(Ink::text, this, localized("Welcome to Quillmere"));
  title->setTextSize(1.7, QFont::DemiBold);
  title->setAlignment(Qt::AlignHCenter);
  setAccessibleRole(*title, QAccessible::Heading);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(0);
  column->addWidget(new ApplicationIconView(kIcon, this), 0, Qt::AlignHCenter);
  column->addSpacing(12);
  column->addWidget(title);
  column->addSpacing(20);
  column->addLayout(makeFacts());
  column->addSpacing(20);
  column->addWidget(makeTip());
  QWidget* reachability = makeReachability();
  column->addWidget(reachability);
  column->addSpacing(24);
  column->addLayout(makeButtons());
  reachability->setHidden(tray.isThere());
  trayChanges_ = tray.changed.connect([reachability, &tray] { reachability->setHidden(tray.isThere()); });
}

QLayout* WelcomeWindow::makeFacts() {
  auto* facts = new QVBoxLayout;
  facts->setSpacing(12);
  const auto add = [&](const char* symbol, const QString& fact) {
    facts->addLayout(makeRow(kFactSymbol, QLatin1String(symbol), Qt::AlignVCenter, wrapped(Ink::text, this, fact)));
  };
  add("folder", localized("Quillmere watches the folder where macOS saves screenshots."));
  add("clock", localized("Every capture offers Temporary, Keep, or Move to Trash."));
  add("sparkles", localized("Descriptions and names are created on your Mac."));
  return facts;
}

QWidget* WelcomeWindow::makeTip() {
  auto* tip = new Note(this);
  auto* column = new QVBoxLayout(tip);
  column->setContentsMargins(14, 12, 14, 12);
  column->setSpacing(10);
  auto* text = wrapped(Ink::secondary, tip,
                       localized("macOS shows a floating thumbnail after each capture. Quillmere’s popup appears "
                                 "sooner with it turned off. Quillmere doesn’t change the floating thumbnail setting "
                                 "for you."));
  column->addLayout(makeRow(kSymbol, QStringLiteral("info.circle"), Qt::AlignTop, text));
  if (!actions_.openScreenshotOptions) return tip;
  auto* options = new ActionButton(ActionButton::Role::secondary, {}, localized("Open Screenshot Options"), tip);
  options->setToolTip(localized("Open the macOS Screenshot app, where Options holds Show Floating Thumbnail"));
  connect(options, &QPushButton::clicked, this, [this] { actions_.openScreenshotOptions(); });
  column->addWidget(options, 0, Qt::AlignRight);
  return tip;
}

QWidget* WelcomeWindow::makeReachability() {
  auto* place = new QWidget(this);
  auto* note = new Note(place);
  auto* around = new QVBoxLayout(place);
  around->setContentsMargins(0, 10, 0, 0);
  around->addWidget(note);
  auto* column = new QVBoxLayout(note);
  column->setContentsMargins(14, 12, 14, 12);
  auto* text = wrapped(Ink::secondary, note,
                       localized("This desktop shows no tray icons. Quillmere goes on watching when its windows are "
                                 "closed. To come back to it, open it again from your launcher."));
  column->addLayout(makeRow(kSymbol, QStringLiteral("tray.and.arrow.down"), Qt::AlignTop, text));
  return place;
}

QLayout* WelcomeWindow::makeButtons() {
  auto* notNow = new ActionButton(ActionButton::Role::secondary, {}, localized("Not Now"), this);
  connect(notNow, &QPushButton::clicked, this, &QDialog::reject);
  auto* help = new ActionButton(ActionButton::Role::secondary, {}, localized("Quillmere Help"), this);
  connect(help, &QPushButton::clicked, this, [this] { actions_.openHelp(HelpAnchor::contents); });
  auto* choose = new ActionButton(ActionButton::Role::primary, {}, localized("Choose Screenshot Folder…"), this);
  choose->setDefault(true);
  choose->setFocus();
  connect(choose, &QPushButton::clicked, this, &WelcomeWindow::chooseFolder);
  auto* row = new QHBoxLayout;
  row->setSpacing(8);
  row->addWidget(notNow);
  row->addStretch();
  row->addSpacing(16);
  row->addWidget(help);
  row->addWidget(choose);
  return row;
}

/// The panel runs the events itself, and the window may be gone when it ends.
void WelcomeWindow::chooseFolder() {
  const QPointer<WelcomeWindow> self(this);
  if (actions_.chooseFolder() && self) self->accept();
}

}  // namespace quillmere
