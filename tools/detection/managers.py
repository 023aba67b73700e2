"""Window managers with the decorations and the compositor that people have beside them."""

import re
from dataclasses import dataclass, field

from desktop import wait_until

# For picom, which draws shadows where the window manager does not. In points.
PICOM_RADIUS = 12
PICOM_OFFSET = (-12, -8)


@dataclass
class Manager:
    """`prepare` writes its settings and gives what to start, the window manager itself first."""

    name: str
    packages: list
    shadow: str
    prepare: callable = field(repr=False)


def _settings(groups):
    return "".join(f"[{group}]\n" + "".join(f"{key}={value}\n" for key, value in values.items()) + "\n"
                   for group, values in groups.items())


def save_settings(desktop, groups):
    """Settings of GNOME's kind, as far as they are not those of each desktop."""
    desktop.write(".config/glib-2.0/settings/keyfile", _settings(groups))


def _common(desktop, is_dark):
    return {
        "org/gnome/desktop/interface": {"gtk-theme": "'Adwaita-dark'" if is_dark else "'Adwaita'",
                                        "color-scheme": "'prefer-dark'" if is_dark else "'default'",
                                        "enable-animations": "false"},
        "org/gnome/desktop/wm/preferences": {"button-layout": "'appmenu:minimize,maximize,close'",
                                             # Of what GNOME's two draw only the title's font can be enlarged.
                                             "titlebar-uses-system-font": "false",
                                             "titlebar-font": f"'Sans Bold {11 * desktop.scale}'",
                                             "num-workspaces": "4"},
        "org/gnome/mutter": {"dynamic-workspaces": "false", "center-new-windows": "true"},
        "org/xfce/mousepad/preferences/window": {"client-side-decorations": "true", "remember-size": "false"},
        "org/xfce/mousepad/preferences/view": {"color-scheme": "'oblivion'" if is_dark else "'none'",
                                               "word-wrap": "true"},
    }


def _openbox(desktop, is_dark):
    save_settings(desktop, _common(desktop, is_dark))
    with open("/etc/xdg/openbox/rc.xml", encoding="utf-8") as file:
        configuration = file.read()
    # Its fonts follow the display's dots per inch, and its title bars and buttons its fonts.
    theme = "Onyx" if is_dark else "Clearlooks"
    configuration = re.sub(r"<theme>\s*<name>[^<]*", f"<theme><name>{theme}", configuration)
    desktop.write(".config/openbox/rc.xml", configuration)
    radius, (x, y) = PICOM_RADIUS * desktop.scale, (offset * desktop.scale for offset in PICOM_OFFSET)
    picom = desktop.write(".config/picom.conf", f"""
        backend = "xrender"; vsync = false; fading = false;
        shadow = true; shadow-radius = {radius}; shadow-offset-x = {x}; shadow-offset-y = {y}; shadow-opacity = 0.6;
        shadow-exclude = ["_GTK_FRAME_EXTENTS@:c", "window_type = 'desktop'"];
        wintypes: {{ desktop = {{ shadow = false; }}; }};
        """)
    return [["openbox"], ["picom", "--config", picom]]


def _xfwm4(desktop, is_dark):
    save_settings(desktop, _common(desktop, is_dark))
    theme = "Default" if desktop.scale == 1 else "Default-xhdpi"
    values = [("theme", "string", theme), ("title_font", "string", "Sans Bold 9"), ("use_compositing", "bool", "true"),
              ("show_frame_shadow", "bool", "true"), ("show_popup_shadow", "bool", "true"),
              ("vblank_mode", "string", "off"), ("workspace_count", "int", "4")]
    properties = "".join(f'<property name="{name}" type="{kind}" value="{value}"/>' for name, kind, value in values)
    desktop.write(".config/xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml",
                  '<?xml version="1.0" encoding="UTF-8"?>\n<channel name="xfwm4" version="1.0">'
                  f'<property name="general" type="empty">{properties}</property></channel>\n')
    return [["xfwm4"]]


def _marco(desktop, is_dark):
    theme = "BlackMATE" if is_dark else "Menta"
    save_settings(desktop, {**_common(desktop, is_dark),
                            "org/mate/marco/general": {"theme": f"'{theme}'", "compositing-manager": "true"}})
    return [["marco", "--sm-disable"]]


def _metacity(desktop, is_dark):
    save_settings(desktop, {**_common(desktop, is_dark), "org/gnome/metacity": {"compositor": "'xrender'"}})
    return [["metacity", "--sm-disable"]]


def _kwin(desktop, is_dark):
    save_settings(desktop, _common(desktop, is_dark))
    values = {"org.kde.kdecoration2": {"library": "org.kde.breeze", "BorderSize": "Normal"},
              "Compositing": {"Enabled": "true", "Backend": "XRender"}, "Desktops": {"Number": "4"}}
    desktop.write(".config/kwinrc", _settings(values))
    return [["kwin_x11"]]


def _mutter(desktop, is_dark):
    save_settings(desktop, _common(desktop, is_dark))
    return [["mutter", "--x11", "--sm-disable"]]


MANAGERS = [
    Manager("openbox", ["openbox", "picom"],
            f"picom, radius {PICOM_RADIUS}, offset {PICOM_OFFSET[0]} {PICOM_OFFSET[1]} points", _openbox),
    Manager("xfwm4", ["xfwm4", "xfconf"], "its own", _xfwm4),
    Manager("marco", ["marco", "mate-themes", "mate-settings-daemon-common"], "its own", _marco),
    Manager("metacity", ["metacity"], "its own", _metacity),
    Manager("kwin", ["kwin-x11", "breeze"], "its own, where it composites", _kwin),
    Manager("mutter", ["mutter", "libgl1-mesa-dri"], "its own", _mutter),
]


def start(manager, desktop, is_dark, screen):
    desktop.write(".config/gtk-3.0/settings.ini", _settings({"Settings": {
        "gtk-theme-name": "Adwaita", "gtk-application-prefer-dark-theme": "1" if is_dark else "0"}}))
    colours = "/usr/share/qt5ct/colors/" + ("darker.conf" if is_dark else "airy.conf")
    desktop.write(".config/qt5ct/qt5ct.conf", _settings({"Appearance": {
        "style": "Fusion", "custom_palette": "true", "color_scheme_path": colours}}))
    first, *others = manager.prepare(desktop, is_dark)
    process = desktop.start(first)
    wait_until(f"{manager.name} manages the display", lambda: screen.is_managed() or process.poll() is not None)
    if process.poll() is None:
        for command in others:
            desktop.start(command)
    return process
