#include "support/CaptureFixture.h"

#include <cstdlib>

namespace quillmere::testing {
namespace {

constexpr std::string_view kSchemas = R"(<?xml version="1.0"?>
<schemalist>
  <schema id="org.gnome.gnome-screenshot" path="/org/gnome/gnome-screenshot/">
    <key name="auto-save-directory" type="s"><default>''</default></key>
    <key name="delay" type="i"><default>0</default></key>
  </schema>
  <schema id="org.mate.screenshot" path="/org/mate/screenshot/">
    <key name="last-save-directory" type="s"><default>''</default></key>
  </schema>
  <schema id="com.quillmere.test" path="/com/quillmere/test/">
    <key name="folder" type="s"><default>'/of/the/installation'</default></key>
    <key name="number" type="i"><default>7</default></key>
  </schema>
</schemalist>
)";

}  // namespace

void useOwnSettingsStore() {
  static const bool isMade = [] {
    const FileURL schemas = FileURL::fromPath(std::getenv("XDG_DATA_HOME")).appending("test-schemas");
    std::filesystem::create_directories(schemas.path());
    writeFile(schemas.appending("test.gschema.xml"), kSchemas);
    ::setenv("GSETTINGS_SCHEMA_DIR", schemas.c_str(), 1);
    ::setenv("GSETTINGS_BACKEND", "keyfile", 1);
    return std::system(("glib-compile-schemas '" + schemas.path() + "'").c_str()) == 0;
  }();
  ASSERT_TRUE(isMade);
}

}  // namespace quillmere::testing
