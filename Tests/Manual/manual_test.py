#!/usr/bin/python3
"""The manual: it can be made, its links lead somewhere, its names exist, its code compiles, and it has
an entry for each check of the framework.

Usage: manual_test.py
"""

import html.parser
import pathlib
import re
import subprocess
import tempfile
import unittest
from urllib.parse import unquote

ROOT = pathlib.Path(__file__).resolve().parents[2]
HEADERS = [*ROOT.glob("CU/Include/CU/*.h"), *ROOT.glob("CUI/Include/CUI/*.h")]
PAGES = [*ROOT.glob("*.md"), *ROOT.glob("Docs/**/*.md")]
MANUAL = [*ROOT.glob("Docs/Manual/**/*.md"), ROOT / "Docs/Framework.md", ROOT / "CHANGELOG.md"]
# A variable of the environment, programs; what stands in reports, functions of CMake and of MFC and WTL.
OTHER = {"CU_DEBUG", "CUTests", "CUITests", "Line", "FetchContent", "FetchContent_Declare",
         "PostNcDestroy", "OnFinalMessage"}
EXAMPLES = [*ROOT.glob("Docs/Manual/Examples/*.cpp")]


def text_of(paths):
    return "".join(path.read_text() for path in paths)


class Page(html.parser.HTMLParser):
    """What a page points to, and where one can point to in it."""

    def __init__(self, path):
        super().__init__()
        self.links, self.names, self.pictures = [], set(), 0
        self.feed(path.read_text())

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        self.names |= {values.get("id"), values.get("name")}
        self.links += [values[name] for name in ("href", "src") if values.get(name)]
        self.pictures += tag == "img"


class Manual(unittest.TestCase):
    maxDiff = None

    def test_site(self):
        """Each link and picture of it is there, and each picture of the tutorial is shown."""
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run([ROOT / "Tools/make-manual", folder], capture_output=True,
                                  text=True, check=False)
            self.assertEqual((0, ""), (done.returncode, done.stderr))
            pages = {path: Page(path) for path in pathlib.Path(folder).resolve().rglob("*.html")
                     if path.parent.name == "html"}
            self.assertEqual(10, sum(page.pictures > 0 for path, page in pages.items()
                                     if path.name.startswith("tutorial_")))
            for path, page in pages.items():
                self.assertNotRegex(path.read_text(), r'class="fragment"><div class="line">(<span[^>]*>)? ',
                                    f"{path.name}: code that does not begin at the left")
                for link in page.links:
                    if re.match("[a-z]+:", link):
                        continue
                    name, _, anchor = unquote(link).partition("#")
                    target = (path.parent / name).resolve() if name else path
                    self.assertTrue(target.is_file(), f"{path.name}: {link}")
                    if anchor and target in pages:
                        self.assertIn(anchor, pages[target].names, f"{path.name}: {link}")

    def test_links_of_sources(self):
        """What the pages say of each other also holds where they are read as they are."""
        for path in PAGES:
            text = re.sub("^```.*?^```", "", path.read_text(), flags=re.M | re.S)
            for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", text):
                if link.endswith(".html"):
                    continue
                # Doxygen has a place for all pictures of its pages.
                places = [path.parent, *[ROOT / "Docs"][:path in MANUAL]]
                self.assertTrue(any((place / link).exists() for place in places), f"{path}: {link}")

    def test_pictures(self):
        """One command takes all of them anew; those of the tutorial by its test."""
        command = (ROOT / "Tools/refresh-picture").read_text()
        for picture in (*ROOT.glob("Docs/*.png"), *ROOT.glob("*/Help/*.png")):
            self.assertIn(f"{picture.relative_to(ROOT)}", command)

    def test_names(self):
        """Each name of the framework in a page or a header's words exists: in the headers, or for the
        pages of those who work on it in the sources."""
        def known_in(paths):
            return set(re.findall(r"\w+", re.sub("//.*", "", text_of(paths))))
        sources = known_in(path for part in ("AutoRun", "Base", "CU", "CUI", "DiscMaker")
                           for path in (ROOT / part).rglob("*") if path.suffix in (".h", ".cpp"))
        public = known_in(HEADERS)
        samples = text_of((ROOT / "Samples").glob("**/*.[hcr]*"))
        public |= set(re.findall(r"\w+", samples))
        for path in (*PAGES, *HEADERS):
            text = path.read_text()
            for name in set(re.findall(r"\b(?:CCUI?|CUI?_?|CUIBMP_)[A-Z]\w*[^\W_]\b", text)):
                known = name in (public if path in (*MANUAL, *HEADERS) else sources)
                self.assertTrue(known or name in OTHER, f"{path}: {name}")
            for name in re.findall(r"\bCUI?/\w+\.h\b", text):
                header = ROOT / name.split("/")[0] / "Include" / name
                self.assertTrue(header.exists(), f"{path}: {name}")

    def test_names_of_members(self):
        """Names in the manual's text stand in the headers, the samples, or in those of the system."""
        windows = "".join(f"#include <{name}.h>\n" for name in ("windows", "commctrl", "commdlg"))
        known = set(re.findall(r"\w+", text_of(HEADERS + [ROOT / "Tests/Manual/Context.h"]) + text_of(
            (ROOT / "Samples").glob("**/*.[hcr]*")) + subprocess.run(
                ["i686-w64-mingw32-g++-win32", "-E", "-dD", "-xc++", "-"], input=windows,
                capture_output=True, text=True, check=True).stdout))
        for path in MANUAL:
            text = re.sub("^```.*?^```", "", path.read_text(), flags=re.M | re.S)
            if path.stem == "Differences":  # whose other columns have what others call it
                text = re.sub(r"^(\|[^|]*\|).*", r"\1", text, flags=re.M)
            for names in re.findall(r"`([A-Z]\w*[a-z]\w*(?:::\w+)*)(?:\(\))?`", text):
                self.assertEqual(set(), set(names.split("::")) - known - OTHER, path)

    def test_code(self):
        """Each block of C++ compiles: whole programs as they are, fragments inside of the class that
        Context.h is the head of."""
        source = [f'#include "{header.relative_to(header.parents[1])}"\n' for header in HEADERS]
        source.append((ROOT / "Tests/Manual/Context.h").read_text())
        blocks = 0
        for path in MANUAL:
            for match in re.finditer(r"^```cpp\n(.*?)^```", path.read_text(), re.M | re.S):
                blocks += 1
                line = path.read_text()[:match.start()].count("\n") + 2
                code = re.sub("^ *#include.*$", "", match[1], flags=re.M)
                where = f'\n#line {line} "{path.relative_to(ROOT)}"\n'
                if code != match[1]:
                    source.append(f"namespace Block{blocks} {{{where}{code}}}\n")
                else:
                    source.append(f"struct CBlock{blocks} : CContext {{ void Code(); }};\n"
                                  f"void CBlock{blocks}::Code() {{{where}{code}}}\n")
        self.assertGreater(blocks, 10)
        options = ("-std=c++17", "-fsyntax-only", "-Wall", "-Wno-unused", "-Werror", "-xc++", "-",
                   *(f"-I{ROOT / layer}/Include" for layer in ("CU", "CUI")),
                   f"-I{ROOT}/Samples/Frame")
        for code in ("".join(source), *(f'#include "{path}"\n' for path in EXAMPLES)):
            done = subprocess.run(["i686-w64-mingw32-g++-win32", *options], input=code,
                                  capture_output=True, text=True, check=False)
            self.assertEqual("", done.stderr)

    def test_reports(self):
        """Each check that the layers make, and no other one, has its entry in the page of reports."""
        page = (ROOT / "Docs/Manual/Reports.md").read_text()
        told = {(part, check)
                for part, entries in re.findall(r"^## (\w+)\n(.*?)(?=^## )", page, re.M | re.S)
                for entry in re.findall(r"^- (.*?):\s", entries, re.M | re.S)
                for check in re.findall(r"`((?:[^`]|\n)+)`", entry)}
        self.assertEqual(sorted(checks()), sorted(told))


def arguments(code, at):
    """Those of the call whose parenthesis opens there, and where it ends."""
    parts, depth, quoted = [""], 0, ""
    while True:
        sign = code[at]
        if quoted:
            if sign == "\\":
                sign = code[at:at + 2]
            elif sign == quoted:
                quoted = ""
        elif sign in "\"'":
            quoted = sign
        elif sign in "()":
            depth += 1 if sign == "(" else -1
        if sign == "," and depth == 1 and not quoted:
            parts.append("")
        elif depth == 0:
            return [parts[0][1:], *parts[1:]]
        else:
            parts[-1] += sign
        at += len(sign)


def literal(text):
    """The text of string literals that stand side by side, or None for any other expression."""
    if re.fullmatch(r'(\s*"(?:[^"\\]|\\.)*")+\s*', text):
        return re.sub(r"\\(.)", r"\1", "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', text)))
    return None


def checks():
    """The parts of the framework and the texts of the checks in them."""
    found = set()
    for path in (*ROOT.glob("CU/**/*.cpp"), *ROOT.glob("CUI/**/*.cpp"), *HEADERS):
        code = path.read_text()
        part = re.search(r'#define CU_SOURCE "(\w+)"', code)
        for match in re.finditer(r"\bCU_?A(SSERT|ssertHolds|SSERT_TEXT)\(", code):
            given = [text.strip() for text in arguments(code, match.end() - 1)]
            if match[1] == "ssertHolds" and len(given) == 4 and literal(given[2]):
                found.add((literal(given[2]), literal(given[1])))
            elif part and match[1] == "SSERT":
                found.add((part[1], ", ".join(given)))
            elif part and match[1] == "SSERT_TEXT":
                text = literal(given[-1])
                # Data has a table of fields with the texts of their checks.
                found |= {(part[1], each) for each in
                          ([text] if text else re.findall(r'"(\w+ != 0)"\}', code))}
    return found


if __name__ == "__main__":
    unittest.main()
