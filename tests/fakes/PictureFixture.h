#pragma once

#include "fakes/ModelFixture.h"
#include "formats/ImageEncoding.h"
#include "formats/ImageOperations.h"

namespace quillmere::testing {

/// A watching model whose screenshots are real pictures, in which no two pixels are alike.
class PictureFixture : public ModelFixture {
 protected:
  void SetUp() override { launchWatching(); }

  static QImage picture();
  UUID arrivePicture(std::string_view name);
  static QSize sizeOf(const FileURL& url);
};

}  // namespace quillmere::testing
