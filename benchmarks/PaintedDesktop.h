#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>

/// A capture of a desktop as a person's looks: a photograph behind, and over it windows with shadows, title bars and
/// much text. The same seed paints the same picture. Opaque; needs a QGuiApplication.
QImage paintedDesktop(QSize size, unsigned seed);
