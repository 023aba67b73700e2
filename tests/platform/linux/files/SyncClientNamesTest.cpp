#include "platform/linux/files/SyncClientNames.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(SyncClientNames, ThoseOfKnownClientsAreKnown) {
  for (const char* temporary : {
           ".a.png.~4f0",             // Nextcloud, ownCloud
           ".syncthing.a.png.tmp",    // Syncthing
           ".a.png.Xy12aB",           // rsync
           "a.png.1f2e3d4c.partial",  // rclone
           ".unison.a.png.0123.unison.tmp",
       }) {
    EXPECT_TRUE(isNameWhileReceived(temporary, "a.png")) << temporary;
  }
}

TEST(SyncClientNames, ThoseOfProgramsThatSaveSafelyAreNot) {
  for (const char* temporary : {
           "",
           "a.png",
           "b.png",
           "a.png.part",             // browsers, KDE's file copies
           "a.png.Xy12aB",           // Qt
           ".goutputstream-Xy12aB",  // GLib
           ".a.png.swp",
           ".a.png.~",
           ".a.png.~zz",
           ".a.png.Xy12a",
           ".b.png.Xy12aB",
           "a.png.1f2e3d4.partial",
           ".syncthing..tmp",
       }) {
    EXPECT_FALSE(isNameWhileReceived(temporary, "a.png")) << temporary;
  }
}

}  // namespace
}  // namespace quillmere
