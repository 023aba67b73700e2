#pragma once

#include <QtCore/QString>
#include <optional>
#include <string>

#include "foundation/FileURL.h"

namespace quillmere {

/// The escapes that the libraries of the capture tools put in their configuration files.
namespace ConfigurationEscapes {

/// QSettings: quotes around some texts, and a backslash for what is not plain ASCII. None for a list of several texts,
/// which names no folder.
std::optional<std::string> readQt(const QString& text);
QString writeQt(const QString& value);

/// KConfig and Xfce's resource files: a backslash for blanks, line breaks and itself.
std::string readBackslashes(const QString& text);

/// "$NAME" and "${NAME}" become what the environment has, "$HOME" the home, and "$$" a dollar sign.
std::string expandVariables(const std::string& value, const FileURL& home);

}  // namespace ConfigurationEscapes

}  // namespace quillmere
