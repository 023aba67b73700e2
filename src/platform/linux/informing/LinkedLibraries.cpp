#include "platform/linux/informing/LinkedLibraries.h"

#include <link.h>
#include <algorithm>
#include <array>

namespace quillmere {
namespace {

struct Row {
  const char* stem;  ///< of the soname, up to ".so"; with a star at its end all that begin so
  const char* name;
  const char* licence;  ///< as SPDX writes it
};

constexpr auto kQt = "LGPL-3.0-only OR GPL-2.0-only";
constexpr auto kLesser = "LGPL-2.1-or-later";
constexpr auto kCompiler = "GPL-3.0-or-later WITH GCC-exception-3.1";
constexpr std::array kRows{
    Row{"libQt6Svg", "Qt SVG", "(LGPL-3.0-only OR GPL-2.0-only) AND HPND-sell-variant"},
    Row{"libQt6*", "Qt", kQt},
    Row{"libX11", "Xlib", "MIT AND X11"},
    Row{"libxcb*", "XCB", "X11"},
    Row{"libxkbcommon*", "xkbcommon", "MIT AND X11 AND HPND"},
    Row{"libasan", "GCC runtime libraries", kCompiler},
    Row{"libc", "GNU C Library", kLesser},
    Row{"libdeflate", "libdeflate", "MIT"},
    Row{"libgcc_s", "GCC runtime libraries", kCompiler},
    Row{"libgio-2.0", "GLib", kLesser},
    Row{"libglib-2.0", "GLib", kLesser},
    Row{"libgobject-2.0", "GLib", kLesser},
    Row{"libheif", "libheif", "LGPL-3.0-or-later"},
    Row{"libicu*", "ICU", "MIT"},
    Row{"libm", "GNU C Library", kLesser},
    Row{"libopencv_*", "OpenCV", "Apache-2.0 AND BSD-3-Clause"},
    Row{"libplist-2.0", "libplist", kLesser},
    Row{"libspeechd", "Speech Dispatcher", kLesser},
    Row{"libstdc++", "GCC runtime libraries", kCompiler},
    Row{"libtesseract", "Tesseract", "Apache-2.0"},
    Row{"libtsan", "GCC runtime libraries", kCompiler},
    Row{"libubsan", "GCC runtime libraries", kCompiler},
    // Names the linker itself, which other systems have under other names.
    Row{"ld-linux*", "GNU C Library", kLesser},
};
/// Of these the compiler takes headers, and the linker never hears.
constexpr std::array kCompiledIn{Row{"", "RapidJSON", "MIT"}};

bool isOf(const Row& row, const QString& stem) {
  const QString named = QString::fromLatin1(row.stem);
  return named.endsWith(QLatin1Char('*')) ? stem.startsWith(named.chopped(1)) : stem == named;
}

LinkedLibrary described(const Row& row) {
  return {QString::fromLatin1(row.name), QString::fromLatin1(row.licence)};
}

/// The dynamic section of the first object, which is the program.
int readProgram(dl_phdr_info* program, size_t, void* result) {
  auto& sonames = *static_cast<QStringList*>(result);
  const ElfW(Dyn)* dynamic = nullptr;
  for (int i = 0; i < program->dlpi_phnum; ++i) {
    const ElfW(Phdr)& header = program->dlpi_phdr[i];
    if (header.p_type == PT_DYNAMIC) {
      dynamic = reinterpret_cast<const ElfW(Dyn)*>(program->dlpi_addr + header.p_vaddr);
    }
  }
  const ElfW(Dyn)* texts = dynamic;
  while (texts && texts->d_tag != DT_NULL && texts->d_tag != DT_STRTAB) ++texts;
  if (!texts || texts->d_tag == DT_NULL) return 1;
  // Where the section may be written, the linker has put the address in place of the distance.
  const ElfW(Addr) place = texts->d_un.d_ptr;
  const auto* names = reinterpret_cast<const char*>(place < program->dlpi_addr ? program->dlpi_addr + place : place);
  for (const ElfW(Dyn)* entry = dynamic; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_NEEDED) sonames.append(QString::fromUtf8(names + entry->d_un.d_val));
  }
  return 1;
}

}  // namespace

QStringList LinkedLibraries::sonames() {
  QStringList sonames;
  ::dl_iterate_phdr(&readProgram, &sonames);
  return sonames;
}

QStringList LinkedLibraries::sonamesOfReader() {
  return {QStringLiteral("libheif.so"), QStringLiteral("libdeflate.so"), QStringLiteral("libopencv_imgproc.so"),
          QStringLiteral("libtesseract.so")};
}

std::vector<LinkedLibrary> LinkedLibraries::describe(const QStringList& sonames) {
  std::vector<LinkedLibrary> libraries;
  for (const Row& row : kCompiledIn) libraries.push_back(described(row));
  for (const QString& soname : sonames) {
    const QString stem = soname.section(QStringLiteral(".so"), 0, 0);
    const auto* row = std::find_if(kRows.begin(), kRows.end(), [&](const Row& each) { return isOf(each, stem); });
    const LinkedLibrary library = row == kRows.end() ? LinkedLibrary{soname, {}} : described(*row);
    if (std::find(libraries.begin(), libraries.end(), library) == libraries.end()) libraries.push_back(library);
  }
  std::sort(libraries.begin(), libraries.end(), [](const LinkedLibrary& a, const LinkedLibrary& b) {
    return a.name.compare(b.name, Qt::CaseInsensitive) < 0;
  });
  return libraries;
}

}  // namespace quillmere
