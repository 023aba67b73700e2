#pragma once

#include <QtCore/QStringList>
#include <vector>

#include "shell/AboutInformation.h"

namespace quillmere {

/// What the running program is built from. It is asked of the program itself, so that no list goes out of date.
namespace LinkedLibraries {

/// The libraries that the program names to the dynamic linker, as it names them and in its order. What those need in
/// turn is theirs.
QStringList sonames();
/// Those that only what reads pictures needs, which is a program of its own.
QStringList sonamesOfReader();
/// With their names for people and their licences, by name, each once; and those of which nothing but headers is
/// compiled in. One that nobody has described yet goes by its soname.
std::vector<LinkedLibrary> describe(const QStringList& sonames);

}  // namespace LinkedLibraries
}  // namespace quillmere
