"""Stands in for the desktop's portal: says how programs are to look.

usage: portal.py light|dark FONT    prints a line when it can be asked; ends when it is terminated
"""

import sys

from gi.repository import Gio, GLib

INTERFACE = """
<node><interface name="org.freedesktop.portal.Settings">
  <method name="ReadAll">
    <arg type="as" direction="in"/><arg type="a{sa{sv}}" direction="out"/>
  </method>
</interface></node>"""


def main(scheme, font):
    settings = GLib.Variant("(a{sa{sv}})", ({
        "org.freedesktop.appearance": {
            "color-scheme": GLib.Variant("u", 1 if scheme == "dark" else 2)},
        "org.gnome.desktop.interface": {
            "font-name": GLib.Variant("s", font),
            "enable-animations": GLib.Variant("b", False)},
    },))

    def answer(_bus, _sender, _path, _interface, _method, _arguments, invocation):
        invocation.return_value(settings)

    def offer(bus, _name):
        bus.register_object("/org/freedesktop/portal/desktop",
                            Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], answer)

    Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.portal.Desktop",
                     Gio.BusNameOwnerFlags.NONE, offer, lambda *_: print("ready", flush=True), None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main(*sys.argv[1:])
