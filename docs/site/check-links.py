#!/usr/bin/env python3
"""Looks that every link of the built site leads to a file and a place that are there, and that nothing comes from elsewhere.

Usage: check-links.py FOLDER
"""
import html.parser
import pathlib
import sys
import urllib.parse

LOADED = {("script", "src"), ("img", "src"), ("link", "href"), ("iframe", "src"), ("source", "src"), ("video", "src")}
"""What a browser fetches by itself."""
NOT_FETCHED = {"canonical", "next", "prev", "alternate"}
TAKEN_ON_TRUST = ("javascript:", "mailto:", "data:")


class Page(html.parser.HTMLParser):
    def __init__(self, file):
        super().__init__()
        self.places, self.links = set(), []
        self.feed(file.read_text(encoding="utf-8", errors="replace"))

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.places |= {values[name] for name in ("id", "name") if values.get(name)}
        for name in ("href", "src"):
            if values.get(name) and values.get("rel") not in NOT_FETCHED:
                self.links.append((values[name], (tag, name) in LOADED))


def faults_of(file, page, pages):
    for link, is_loaded in page.links:
        parts = urllib.parse.urlsplit(link)
        if link.startswith(TAKEN_ON_TRUST):
            continue
        if parts.scheme or parts.netloc:
            if is_loaded:
                yield f"loads {link}"
            continue
        target = (file.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else file
        if not target.is_file():
            yield f"links to {link}, which is not there"
        elif target in pages and parts.fragment and urllib.parse.unquote(parts.fragment) not in pages[target].places:
            yield f"links to {link}, and that page has no such place"


def main():
    site = pathlib.Path(sys.argv[1]).resolve()
    # The page for what is not found belongs to a server, which knows where the site begins.
    pages = {file: Page(file) for file in site.rglob("*.html") if file.name != "404.html"}
    faults = [f"{file.relative_to(site)} {fault}" for file, page in pages.items() for fault in faults_of(file, page, pages)]
    print("\n".join(sorted(set(faults))[:50]), file=sys.stderr, end="\n" if faults else "")
    links = sum(len(page.links) for page in pages.values())
    print(f"{len(pages)} pages, {links} links, {len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
