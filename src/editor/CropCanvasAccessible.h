#pragma once

namespace quillmere {

class CropCanvas;

/// Has assistive technology read the selection as the canvas's value, and move it by actions.
void makeAccessible(CropCanvas& canvas);
/// The selection has become another.
void tellValue(CropCanvas& canvas);

}  // namespace quillmere
