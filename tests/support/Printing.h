#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <iomanip>
#include <ostream>

#include "foundation/Date.h"
#include "foundation/FileURL.h"

// How test failures show values; found by the test framework in the namespace of the type.

inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
  *out << '"' << bytes.toStdString() << '"';
}

namespace quillmere {

inline void PrintTo(const FileURL& url, std::ostream* out) {
  *out << url.coded();
}
inline void PrintTo(const Date& date, std::ostream* out) {
  *out << std::setprecision(17) << date.seconds;
}

}  // namespace quillmere
