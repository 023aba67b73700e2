#pragma once

namespace quillmere {

class DurationPicker;

/// Has assistive technology find the menu of times by what it is for, with the chosen time as its value and its text:
/// Qt names a menu after what is chosen in it, and shows the items of a closed one.
void makeAccessible(DurationPicker& picker);

}  // namespace quillmere
