#pragma once

#include <array>
#include <string_view>

/// The capture tools that can be told before they look at the screen.
namespace quillmere::CaptureToolTable {

/// Their windows' class (the first part of `WM_CLASS`), in small letters.
inline constexpr std::array kWindowClasses{
    std::string_view("flameshot"),
    std::string_view("spectacle"),
    std::string_view("gnome-screenshot"),
    std::string_view("mate-screenshot"),
    std::string_view("ksnip"),
    std::string_view("xfce4-screenshooter"),
    std::string_view("cinnamon-screenshot"),
    std::string_view("slop"),
    std::string_view("scrot"),
    std::string_view("shutter"),
    std::string_view("deepin-screen-recorder"),
};

/// Names that they take on the session bus when they start.
inline constexpr std::array kBusNames{
    "org.kde.Spectacle",       "org.kde.spectacle",     "org.gnome.Screenshot",
    "org.flameshot.Flameshot", "com.deepin.Screenshot", "io.elementary.screenshot",
};

/// Interfaces that are asked for a screenshot, by them or by the desktop's portal. Any method of the first ones; of the
/// portal only the one that makes a picture.
inline constexpr std::array kRequestInterfaces{
    "org.gnome.Shell.Screenshot", "org.kde.KWin.ScreenShot2", "org.kde.kwin.Screenshot",
    "org.kde.Spectacle",          "org.flameshot.Flameshot",
};
inline constexpr const char* kPortalInterface = "org.freedesktop.portal.Screenshot";
inline constexpr const char* kPortalMethod = "Screenshot";

}  // namespace quillmere::CaptureToolTable
