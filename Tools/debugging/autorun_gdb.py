"""Shows the framework's strings, times, windows and bitmaps in gdb, and finds its sources.

In gdb, or in the file .gdbinit:    source PATH/autorun_gdb.py
All members of an object, as without this: print /r
"""

import datetime
import pathlib

import gdb
import gdb.printing


class CCUString:
    """The text, with the NULs that it may have inside."""

    def __init__(self, value):
        self.text = value["m_pchData"]

    def to_string(self):
        # In front of the characters: references, length, capacity.
        head = self.text.cast(gdb.lookup_type("int").pointer())
        try:
            length, capacity = int(head[-2]), int(head[-1])
        except gdb.MemoryError:
            length, capacity = 0, -1
        if not 0 <= length <= capacity:
            return f"<not made yet, or gone: {hex(self.text)}>"
        return self.text.lazy_string(length=length)


class CCUTime:
    """The moment, in UTC."""

    def __init__(self, value):
        self.seconds = int(value["m_nTime"])

    def to_string(self):
        moment = datetime.datetime(1970, 1, 1) + datetime.timedelta(seconds=self.seconds)
        return f"{moment} UTC"


class CCUIWindow:
    """The window's handle, and its owner's if there is one."""

    def __init__(self, value):
        self.window, self.owner = value["m_hWnd"], value["m_hWndOwner"]

    def to_string(self):
        owner = f", owner {hex(self.owner)}" if self.owner else ""
        return (f"HWND {hex(self.window)}" if self.window else "no window") + owner


class CCUIBitmap:
    """Size, depth, handle, and the name it was loaded by."""

    def __init__(self, value):
        self.data = value["m_pchData"]

    def to_string(self):
        data = self.data
        if not data["m_hBitmap"]:
            return "no bitmap"
        text = (f"{int(data['m_nWidth'])} x {int(data['m_nHeight'])}, {int(data['m_nDepth'])} bit, "
                f"HBITMAP {hex(data['m_hBitmap'])}")
        return f"{text}, {self.name()}" if data["m_pSource"] else text

    def name(self):
        source = self.data["m_pSource"]
        number = int(source["m_pszID"])
        if not number:
            return f"from {source['m_sBitmap'].format_string()}"
        return f"resource {number}" if number < 0x10000 else f"resource {source['m_pszID'].string()!r}"


def register():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("AutoRun")
    for shown in (CCUString, CCUTime, CCUIWindow, CCUIBitmap):
        printers.add_printer(shown.__name__, f"^{shown.__name__}$", shown)
    gdb.printing.register_pretty_printer(None, printers, replace=True)


def find_sources():
    """The debug information names them from their root on."""
    root = pathlib.Path(__file__).resolve().parents[2]
    for folder in (root / "src", root):
        if (folder / "CUI/Src").is_dir():
            gdb.execute(f'directory "{folder.as_posix()}"', to_string=True)


register()
find_sources()
