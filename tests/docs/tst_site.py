#!/usr/bin/env python3
# SPDX-License-Identifier: LGPL-2.1-or-later
"""Tests the built site in a browser, from files.

    tst_site.py SITE-DIRECTORY AXE-SCRIPT [TEST...]

With ZYBASE_ALL_PAGES=1 the tests of the accessibility and of a phone open every page.
"""

import os
import sys
import unittest
from pathlib import Path
from shutil import which

sys.dont_write_bytecode = True
from browser import PROGRAMS, Browser  # noqa: E402

SITE = Path(sys.argv.pop(1)).resolve()
AXE = Path(sys.argv.pop(1))

PAGES = [
    "index.html",
    "classZyBase_1_1CHttpPostRequest.html",
    "guide-watching-the-theme.html",
    "search.html?q=download",
]
WIDEST_PAGES = ["building.html", "classZyBase_1_1CFileUtils.html", "classZyBase_1_1CHttpPostRequest-members.html"]
if os.environ.get("ZYBASE_ALL_PAGES"):
    PAGES = sorted(path.name for path in SITE.glob("*.html"))
RESULTS = "return [...document.querySelectorAll('#search-results a')].map(link => link.textContent)"


class SiteTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        missing = [program for program in PROGRAMS if not which(program)]
        if missing:
            raise unittest.SkipTest(f"{', '.join(missing)} is not installed")
        try:
            cls.browser = Browser()
        except RuntimeError as error:
            # Some machines do not allow the sandbox that the browser needs.
            if os.geteuid() != 0:
                raise unittest.SkipTest(f"chromium cannot run on this machine: {error}") from error
            raise

    @classmethod
    def tearDownClass(cls):
        cls.browser.stop()

    def setUp(self):
        self.browser.set_theme("light")
        self.browser.set_size(1366, 900)

    def open(self, page):
        self.browser.open(f"{SITE.as_uri()}/{page}")

    def wait_for_page(self, page):
        self.browser.wait_for(
            f"return location.pathname.endsWith('/{page}') && document.readyState === 'complete'"
        )

    def background(self):
        return self.browser.run("return getComputedStyle(document.body).backgroundColor")


class Pages(SiteTest):
    def test_search_finds_terms(self):
        expected = {
            "qr": "ZyBase::CSystemUtils::GenerateQRCode()",
            "md5": "ZyBase::CFileUtils::GetFileMd5()",
            "timeout": "Deleting a request",
            "dark theme": "ZyBase::CSystemUtils::IsDarkTheme()",
            "proxy": "The system's proxy",
            "StartDownload": "ZyBase::DownloadManager::StartDownload()",
        }
        for term, name in expected.items():
            with self.subTest(term=term):
                self.open("index.html")
                self.browser.type("header input", term + "\n")
                self.wait_for_page("search.html")
                self.assertIn(name, self.browser.run(RESULTS)[:5])

    def test_search_reports_no_result(self):
        self.open("search.html?q=zzzz")
        self.assertEqual(self.browser.run(RESULTS), [])
        state = self.browser.run("return document.getElementById('search-state').textContent")
        self.assertEqual(state, 'Nothing found for "zzzz". Try one shorter word.')

    def test_search_results_have_targets(self):
        self.open("search.html")
        links = self.browser.run("return searchIndex.map(entry => entry[3])")
        self.assertGreater(len(links), 200)
        for link in links:
            page, _, anchor = link.partition("#")
            text = (SITE / page).read_text(encoding="utf-8")
            self.assertTrue(not anchor or f'id="{anchor}"' in text, link)

    def test_theme_follows_system_until_selected(self):
        self.open("index.html")
        light = self.background()
        self.browser.set_theme("dark")
        dark = self.background()
        self.assertNotEqual(light, dark)
        self.browser.click("button.theme")
        self.assertEqual(self.background(), light)
        self.open("guide.html")
        self.assertEqual(self.background(), light)
        self.browser.click("button.theme")
        self.assertEqual(self.background(), dark)
        self.browser.run("localStorage.clear()")

    def test_button_copies_code(self):
        self.open("index.html")
        self.browser.command("Browser.grantPermissions", permissions=["clipboardReadWrite", "clipboardSanitizedWrite"])
        self.browser.click("button.copy")
        copied = self.browser.run("return navigator.clipboard.readText()")
        self.assertTrue(copied.startswith("#include <ZyBase/ZyBase.h>\n\n#include <QDebug>\n"), copied)

    def test_pages_fit_phone(self):
        self.browser.set_size(360, 740)
        for page in PAGES + WIDEST_PAGES:
            with self.subTest(page=page):
                self.open(page)
                self.assertEqual(self.browser.run("return document.scrollingElement.scrollWidth"), 360)
        self.assertFalse(self.browser.run("return document.querySelector('.menu details').open"))
        self.browser.click(".menu summary")
        self.browser.click(".menu a[href='security.html']")
        self.wait_for_page("security.html")

    def test_page_lists_its_headings(self):
        self.open("classZyBase_1_1CHttpPostRequest.html")
        listed = self.browser.run("return [...document.querySelectorAll('.toc a')].map(link => link.textContent)")
        self.assertIn("Description", listed)
        self.assertIn("SignObject()", listed)

    def test_pages_load_only_files_without_errors(self):
        self.browser.errors()
        for page in PAGES:
            self.open(page)
            loaded = self.browser.run("return performance.getEntriesByType('resource').map(entry => entry.name)")
            self.assertEqual([name for name in loaded if not name.startswith("file://")], [])
        self.assertEqual(self.browser.errors(), [])


@unittest.skipUnless(AXE.is_file(), "axe-core is not installed")
class Accessibility(SiteTest):
    def test_axe_finds_nothing(self):
        script = AXE.read_text(encoding="utf-8")
        for page in PAGES:
            self.open(page)
            self.browser.run(script)
            for theme in ("light", "dark"):
                with self.subTest(page=page, theme=theme):
                    self.browser.set_theme(theme)
                    options = {"preload": False, "resultTypes": ["violations"]}
                    found = self.browser.run("return axe.run(document, arguments[0])", options)["violations"]
                    self.assertEqual([(rule["id"], rule["nodes"][0]["html"]) for rule in found], [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
