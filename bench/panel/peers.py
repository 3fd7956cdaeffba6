"""The programs that the panel is measured beside: a bare window of the same toolkit, and two desktop panels as their users
have them, each with a clock and the desktops on a black bar along the top edge, where the same pixel tells that it is
painted."""

import os

POLYBAR = """[bar/top]
width = 100%
height = 32
background = #000000
modules-left = xworkspaces
modules-right = date
[module/xworkspaces]
type = internal/xworkspaces
[module/date]
type = internal/date
date = %H:%M
"""
TINT2 = """rounded = 0
border_width = 0
background_color = #000000 100
panel_items = TC
panel_size = 100% 32
panel_position = top center horizontal
panel_background_id = 1
taskbar_mode = multi_desktop
time1_format = %H:%M
time1_font = Sans 10
clock_font_color = #ffffff 100
"""


def commands(programs, home):
    """What starts each of them, by name. Their configurations are written into `home`."""
    configurations = {}
    for name, text in (("polybar", POLYBAR), ("tint2", TINT2)):
        configurations[name] = os.path.join(home, name + ".conf")
        with open(configurations[name], "w") as file:
            file.write(text)
    return {"dawnly": [os.path.join(programs, "dawnly")], "bare window": [os.path.join(programs, "bare_window")],
            "polybar": ["polybar", "--config=" + configurations["polybar"], "top"],
            "tint2": ["tint2", "-c", configurations["tint2"]]}
