#pragma once

#include <QtGui/QImage>

namespace quillmere {

/// What people take screenshots of.
enum class PaintedScreen { terminal, mail, table, code, chart, darkChart, page, message };

/// A capture with texts that can be read, as a program would show it. The same kind paints the same picture. Opaque;
/// needs a QGuiApplication.
QImage paintedScreen(PaintedScreen kind);

}  // namespace quillmere
