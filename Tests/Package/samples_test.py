#!/usr/bin/python3
"""The gallery of effects and the prober, built from the installed package and driven from outside.

Usage: samples_test.py Samples.test_WHAT   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import subprocess
import unittest

from PIL import Image, ImageChops, ImageGrab

from package_test import ROOT, Package, output_of, wait_for, windows, xdotool

# Of the picture in the page, in rows: what each effect is drawn in.
STAGES = [(left, top, left + cx, top + 110) for top, cx, lefts in (
    (31, 140, (171, 323, 474, 626)), (179, 140, (171, 323, 474, 626)), (326, 188, (172, 374, 576)))
    for left in lefts]
# Writes what the prober's variable Interval is. With "stay" it has a variable of its own.
ASKER = r"""
#include <stdio.h>
#include "CU/CU.h"
#include "CU/ProberClient.h"

int main(int nArguments, char **)
{
    if (nArguments > 1) {
        CCUProberLong watched("\\Asker", "Watched", 7);
        watched.SetOpen(true);
        CUGetWindow();
        for (MSG msg; GetMessageA(&msg, nullptr, 0, 0);)
            DispatchMessageA(&msg);
    }
    CCUProberClient client;
    CUProberValue value;
    client.Connect(CCUProberClient::GetNextProgram(nullptr), 60000);
    for (int i = client.List(); i-- > 0;) {
        const CUProberEntry &entry = client.GetEntry(i);
        if (entry.sName == "Interval" && client.Read(&entry.nID, &value, 1))
            puts(value.ToText());
    }
}
"""


def grab(place):
    return ImageGrab.grab(xdisplay="").convert("RGB").crop(place)


def click(x, y):
    xdotool("mousemove", x, y, "click", 1)


def keys(*names):
    xdotool("key", "--delay", 100, *names)


class Samples(Package):
    def moves(self, place, what):
        before = grab(place)
        wait_for(lambda: ImageChops.difference(grab(place), before).getbbox(), what)

    def test_effects(self):
        self.build("Effects")
        xdotool("mousemove", 1020, 760)
        gallery = self.start("Effects", "40")
        still = Image.open(ROOT / "Docs/effects.png").convert("RGB")
        for place in STAGES:
            wait_for(lambda p=place: grab(p) == still.crop(p), f"the picture of the page at {place}")
        click(48, 285)  # Run
        for place in STAGES:
            self.moves(place, f"the effect at {place}")
        # Once, downwards: in the middle it is day below. At the end all show the second picture.
        click(85, 142)
        keys("Home", "Return")
        click(85, 58)
        keys("Home", "Down", "Down", "Return")
        wait_for(lambda: grab(STAGES[4]) == grab(STAGES[5]), "the end")
        self.assertNotEqual(grab(STAGES[4]), still.crop(STAGES[4]))
        click(18, 209)  # Wine 8 does not close a window by the keyboard from a combo box
        keys("alt+F4")
        self.assertEqual(0, gallery.wait(60))

    def test_prober(self):
        self.build("Prober")
        (self.folder / "Asker.cpp").write_text(ASKER)
        page = (self.tree / "share/doc/AutoRun/Prober/CMakeLists.txt").read_text()
        (self.folder / "CMakeLists.txt").write_text(
            page.replace("Prober.cpp Prober.rc", "Asker.cpp").replace("Prober", "Asker"))
        self.configure(self.folder, self.folder / "asker")
        output_of("cmake", "--build", self.folder / "asker")
        (self.folder / "asker/Asker.exe").rename(self.folder / "build/Asker.exe")
        plot, field, status = (322, 122, 640, 356), (322, 386, 482, 404), (5, 420, 600, 436)

        def interval():
            return output_of("wine", self.folder / "build/Asker.exe").strip()

        def select(letter):
            """What is the first below the first row to begin so; a second letter may come too late."""
            click(200, 51)
            keys("Home", letter)

        def roots():
            click(200, 51)
            keys("Home")
            return grab((5, 44, 22, 410))

        def is_open():
            """Whether the selected variable can be set; None while the field is empty."""
            shown = grab(field)
            return shown.getpixel((150, 9)) == (255, 255, 255) if shown.getcolors(1) is None else None

        def put(text):
            wait_for(is_open, "the field to be open")
            click(400, 395)
            keys("Home", "shift+End", *text, "Return")

        output_of("wine", "reg", "add", r"HKCU\Software\Samples\Prober\Frame", "/f", "/v", "Placement",
                  "/d", "0,0,660,440,0,96")
        prober = self.start("Prober")
        self.moves(plot, "the history of messages")
        alone = grab((5, 44, 22, 410))
        # A value that is open is set, not to what is no number, and gets its default back.
        select("i")
        put("50")
        wait_for(lambda: interval() == "50", "the value")
        before = grab(status)
        put("x")
        wait_for(lambda: grab(status) != before, "the answer")
        self.assertEqual("50", interval())
        keys("ctrl+d")
        wait_for(lambda: interval() == "500", "the default")
        # One that is computed is seen, and cannot be set.
        select("p")
        wait_for(lambda: is_open() is False, "the field to be closed")
        self.moves(plot, "another value")
        # Another program comes, and goes with what is selected.
        wait_for(lambda: roots() == alone, "the first row")
        asker = self.start("Asker", "stay")
        wait_for(lambda: roots() != alone, "the other program")
        select("w")
        wait_for(is_open, "its value")
        asker.kill()
        wait_for(lambda: roots() == alone, "its end")
        keys("ctrl+q")
        self.assertEqual(0, prober.wait(60))


if __name__ == "__main__":
    unittest.main()
