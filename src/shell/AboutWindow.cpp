#include "shell/AboutWindow.h"

#include <QtWidgets/QBoxLayout>

#include "controls/AccessibleRole.h"
#include "controls/ActionButton.h"
#include "controls/ThemedLabel.h"
#include "controls/WrappingRow.h"
#include "foundation/Localized.h"
#include "shell/AcknowledgmentsPopover.h"

namespace quillmere {
namespace {

constexpr int kLetters = 56;
constexpr int kIcon = 96;

ThemedLabel* centred(Ink ink, QWidget* parent, const QString& text) {
  auto* label = new ThemedLabel(ink, parent, text);
  label->setAlignment(Qt::AlignHCenter);
  label->setWordWrap(true);
  return label;
}

}  // namespace

AboutWindow::AboutWindow(AboutInformation information, Actions actions)
    : SmallWindow(localized("About Quillmere"), kLetters),
      information_(std::move(information)),
      actions_(std::move(actions)) {
  auto* name = centred(Ink::text, this, localized("Quillmere"));
  name->setTextSize(1.9, QFont::DemiBold);
  setAccessibleRole(*name, QAccessible::Heading);
  auto* copyright = centred(Ink::secondary, this, AboutInformation::copyright());
  copyright->setTextSize(0.92);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  column->setSpacing(0);
  column->addWidget(new ApplicationIconView(kIcon, this), 0, Qt::AlignHCenter);
  column->addSpacing(10);
  column->addWidget(name);
  column->addSpacing(2);
  column->addWidget(centred(Ink::secondary, this, localized("Screenshot now, decide later.")));
  column->addSpacing(16);
  column->addWidget(makeVersion());
  column->addSpacing(4);
  column->addWidget(copyright);
  column->addSpacing(20);
  column->addLayout(makeLinks());
}

/// To be copied into a message.
QWidget* AboutWindow::makeVersion() {
  auto* version = centred(Ink::text, this, information_.versionLine());
  version->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return version;
}

QLayout* AboutWindow::makeLinks() {
  auto* links = new WrappingRow(8, Qt::AlignHCenter);
  const auto add = [&](const QString& symbol, const QString& text, const std::function<void()>& open) {
    auto* button = new ActionButton(ActionButton::Role::secondary, symbol, text, this);
    // Return presses the button that has the focus; without one it does nothing.
    connect(button, &QPushButton::clicked, this, open);
    links->addWidget(button);
    return button;
  };
  const QString outside = QStringLiteral("arrow.up.forward.square");
  add(outside, localized("Website"), actions_.openWebsite)->setFocus();
  add(outside, localized("Support"), actions_.openSupport);
  add(outside, localized("Privacy Policy"), actions_.openPrivacyPolicy);
  acknowledgments_ = add({}, localized("Acknowledgments"), [this] { showAcknowledgments(); });
  return links;
}

void AboutWindow::showAcknowledgments() {
  auto* popover = new AcknowledgmentsPopover(information_.libraries, this);
  popover->setAttribute(Qt::WA_DeleteOnClose);
  popover->openBeside(*acknowledgments_);
}

}  // namespace quillmere
