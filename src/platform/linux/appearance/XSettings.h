#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include "controls/Appearance.h"

namespace quillmere {

/// The settings of a property in the form of the XSETTINGS specification, texts and whole numbers; of a damaged one
/// those before the damage. (https://specifications.freedesktop.org/xsettings/latest)
QMap<QString, QVariant> parsedXSettings(const QByteArray& property);

Appearance appearanceOf(const QMap<QString, QVariant>& xSettings);

}  // namespace quillmere
