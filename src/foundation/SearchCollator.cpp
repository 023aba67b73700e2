#include "foundation/SearchCollator.h"

#include <unicode/ucol.h>
#include <QtCore/QLocale>

namespace quillmere {

SearchCollator searchCollator(const QString& locale) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* collator = ucol_open(locale.toLatin1().constData(), &status);
  ucol_setAttribute(collator, UCOL_STRENGTH, UCOL_PRIMARY, &status);
  ucol_setAttribute(collator, UCOL_CASE_LEVEL, UCOL_OFF, &status);
  ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_OFF, &status);
  ucol_setAttribute(collator, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
  ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
  SearchCollator result(collator, [](const UCollator* opened) { ucol_close(const_cast<UCollator*>(opened)); });
  return U_SUCCESS(status) ? result : nullptr;
}

QString searchLocale() {
  return QLocale().collation().name();
}

}  // namespace quillmere
