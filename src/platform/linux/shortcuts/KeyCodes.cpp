#include "platform/linux/shortcuts/KeyCodes.h"

#include <linux/input-event-codes.h>
#include <algorithm>
#include <array>

namespace quillmere {
namespace {

struct Place {
  quint32 stored;
  quint32 evdev;
};

// clang-format off
constexpr auto kPlaces = std::to_array<Place>({
    // Letters.
    {0, KEY_A}, {11, KEY_B}, {8, KEY_C}, {2, KEY_D}, {14, KEY_E}, {3, KEY_F}, {5, KEY_G}, {4, KEY_H}, {34, KEY_I},
    {38, KEY_J}, {40, KEY_K}, {37, KEY_L}, {46, KEY_M}, {45, KEY_N}, {31, KEY_O}, {35, KEY_P}, {12, KEY_Q},
    {15, KEY_R}, {1, KEY_S}, {17, KEY_T}, {32, KEY_U}, {9, KEY_V}, {13, KEY_W}, {7, KEY_X}, {16, KEY_Y}, {6, KEY_Z},
    // Digits.
    {18, KEY_1}, {19, KEY_2}, {20, KEY_3}, {21, KEY_4}, {23, KEY_5}, {22, KEY_6}, {26, KEY_7}, {28, KEY_8},
    {25, KEY_9}, {29, KEY_0},
    // Signs; the last one is ISO's, beside the left Shift key.
    {27, KEY_MINUS}, {24, KEY_EQUAL}, {33, KEY_LEFTBRACE}, {30, KEY_RIGHTBRACE}, {41, KEY_SEMICOLON},
    {39, KEY_APOSTROPHE}, {50, KEY_GRAVE}, {42, KEY_BACKSLASH}, {43, KEY_COMMA}, {47, KEY_DOT}, {44, KEY_SLASH},
    {10, KEY_102ND},
    // Around the letters.
    {36, KEY_ENTER}, {48, KEY_TAB}, {49, KEY_SPACE}, {51, KEY_BACKSPACE}, {53, KEY_ESC}, {117, KEY_DELETE},
    {115, KEY_HOME}, {119, KEY_END}, {116, KEY_PAGEUP}, {121, KEY_PAGEDOWN}, {123, KEY_LEFT}, {124, KEY_RIGHT},
    {125, KEY_DOWN}, {126, KEY_UP}, {114, KEY_INSERT},
    // F1 to F20.
    {122, KEY_F1}, {120, KEY_F2}, {99, KEY_F3}, {118, KEY_F4}, {96, KEY_F5}, {97, KEY_F6}, {98, KEY_F7},
    {100, KEY_F8}, {101, KEY_F9}, {109, KEY_F10}, {103, KEY_F11}, {111, KEY_F12}, {105, KEY_F13}, {107, KEY_F14},
    {113, KEY_F15}, {106, KEY_F16}, {64, KEY_F17}, {79, KEY_F18}, {80, KEY_F19}, {90, KEY_F20},
    // The keypad.
    {82, KEY_KP0}, {83, KEY_KP1}, {84, KEY_KP2}, {85, KEY_KP3}, {86, KEY_KP4}, {87, KEY_KP5}, {88, KEY_KP6},
    {89, KEY_KP7}, {91, KEY_KP8}, {92, KEY_KP9}, {65, KEY_KPDOT}, {67, KEY_KPASTERISK}, {69, KEY_KPPLUS},
    {78, KEY_KPMINUS}, {75, KEY_KPSLASH}, {76, KEY_KPENTER}, {81, KEY_KPEQUAL}, {71, KEY_NUMLOCK},
    // Modifiers.
    {55, KEY_LEFTMETA}, {54, KEY_RIGHTMETA}, {56, KEY_LEFTSHIFT}, {60, KEY_RIGHTSHIFT}, {58, KEY_LEFTALT},
    {61, KEY_RIGHTALT}, {59, KEY_LEFTCTRL}, {62, KEY_RIGHTCTRL}, {57, KEY_CAPSLOCK},
    // Japanese keyboards: yen, underscore, the keypad's comma, and the two beside the space bar.
    {93, KEY_YEN}, {94, KEY_RO}, {95, KEY_KPJPCOMMA}, {102, KEY_HANJA}, {104, KEY_HANGEUL}
});
// clang-format on

template <quint32 Place::*From, quint32 Place::*To>
std::optional<quint32> found(quint32 code) {
  const auto* place = std::find_if(kPlaces.begin(), kPlaces.end(), [&](const Place& one) { return one.*From == code; });
  return place == kPlaces.end() ? std::nullopt : std::optional((*place).*To);
}

}  // namespace

std::optional<quint32> KeyCodes::evdev(quint32 stored) {
  return found<&Place::stored, &Place::evdev>(stored);
}

std::optional<quint32> KeyCodes::stored(quint32 evdev) {
  return found<&Place::evdev, &Place::stored>(evdev);
}

bool KeyCodes::isKeypad(quint32 stored) {
  constexpr std::array<quint32, 19> kKeypad{82, 83, 84, 85, 86, 87, 88, 89, 91, 92, 65, 67, 69, 78, 75, 76, 81, 71, 95};
  return std::find(kKeypad.begin(), kKeypad.end(), stored) != kKeypad.end();
}

}  // namespace quillmere
