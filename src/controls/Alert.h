#pragma once

#include <QtCore/QString>
#include <QtWidgets/QWidget>

namespace quillmere {

/// Shows a failure with its title and message, and waits until it is read.
void showAlert(QWidget* parent, const QString& title, const QString& message);

}  // namespace quillmere
