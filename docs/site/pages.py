#!/usr/bin/env python3
"""The pages in docs/ and the README: their links checked, and as a site of HTML files.

usage: pages.py check         every relative link and anchor is there, every page is in the index
       pages.py build FOLDER  the site; needs cmark-gfm
"""
import html
import os
import pathlib
import re
import shutil
import subprocess
import sys

DOCS = pathlib.Path(__file__).resolve().parents[1]
ROOT = DOCS.parent
INDEX = DOCS / "README.md"
FENCED = re.compile(r"^( *)(```|~~~).*?^\1\2 *$", re.M | re.S)
COPIED = {".svg", ".png", ".json"}
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")


def pages():
    return [ROOT / "README.md", *sorted(DOCS.rglob("*.md"))]


def slug(heading, seen):
    """The anchor of a heading, as the places where repositories are read make it."""
    text = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).strip().lower()
    text = re.sub(r"[^\w\- ]", "", text).replace(" ", "-")
    seen[text] = seen.get(text, -1) + 1
    return f"{text}-{seen[text]}" if seen[text] else text


def anchors(page):
    seen = {}
    return {slug(line, seen) for line in re.findall(r"^#+ (.*)$", FENCED.sub("", page.read_text()), re.M)}


def target(page, link):
    """The file that a link leads to, and the anchor in it; nothing for links to elsewhere."""
    if re.match(r"[a-z]+:", link):
        return None, ""
    path, _, anchor = link.partition("#")
    return (page.parent / path).resolve() if path else page, anchor


def check():
    faults, indexed = [], {path for _, _, path in navigation()}
    for page in pages():
        name = page.relative_to(ROOT)
        text = page.read_text()
        for link in LINK.findall(re.sub(r"`[^`\n]*`", "", FENCED.sub("", text))):
            file, anchor = target(page, link)
            if file is None:
                continue
            if not file.exists():
                faults.append(f"{name}: {link}: there is no such file")
            elif anchor and (file.suffix != ".md" or anchor not in anchors(file)):
                faults.append(f"{name}: {link}: there is no such heading")
        if page not in indexed and page != INDEX:
            faults.append(f"{name}: not in {INDEX.relative_to(ROOT)}")
    sys.exit("\n".join(faults) or None)


def navigation():
    """(group, title, page) of each entry of the index."""
    entries, group = [("", "Start", ROOT / "README.md")], ""
    for line in INDEX.read_text().splitlines():
        if line.startswith("## "):
            group = line[3:]
        elif entry := re.match(r"- \[([^\]]*)\]\(([^)#]*)\)", line):
            entries.append((group, entry[1], (DOCS / entry[2]).resolve()))
    return entries


def place(page):
    """Where a page stands in the site."""
    if page == ROOT / "README.md":
        return pathlib.Path("start.html")
    if page == INDEX:
        return pathlib.Path("index.html")
    return page.relative_to(DOCS).with_suffix(".html")


def menu(current):
    here, lines, last = place(current).parent, [], None
    for group, title, page in navigation():
        if group != last:
            lines.append(f"<h2>{html.escape(group)}</h2>" if group else "")
            last = group
        mark = ' aria-current="page"' if page == current else ""
        lines.append(f'<a href="{os.path.relpath(place(page), here)}"{mark}>{html.escape(title)}</a>')
    return "\n".join(lines)


def relink(page, match):
    """Pages lead to pages of the site; what is not part of it is only named."""
    attribute, link, rest = match[1], html.unescape(match[2]), match[3]
    file, anchor = target(page, link)
    if file is None or not (link.split("#")[0]):
        return match[0]
    if file in pages():
        new = os.path.relpath(place(file), place(page).parent) + (f"#{anchor}" if anchor else "")
    elif DOCS in file.parents and file.suffix in COPIED:
        return match[0]
    else:
        return f'<a title="{html.escape(str(file.relative_to(ROOT)))}"{rest}'
    return f'<a {attribute}="{html.escape(new)}"{rest}'


def render(page, template):
    body = subprocess.run(["cmark-gfm", "-e", "table", "--full-info-string", str(page)], check=True,
                          capture_output=True, text=True).stdout
    seen = {}
    body = re.sub(r"<h([1-6])>(.*?)</h\1>", lambda m: '<h{0} id="{1}">{2}</h{0}>'.format(
        m[1], slug(html.unescape(re.sub(r"<[^>]*>", "", m[2])), seen), m[2]), body)
    body = re.sub(r'<a (href)="([^"]*)"(.*?>)', lambda m: relink(page, m), body)
    body = re.sub(r"<table>.*?</table>", r'<div class="wide">\g<0></div>', body, flags=re.S)
    body = re.sub(r"<p>(<img [^>]*>)</p>", r'<div class="wide">\1</div>', body)
    up = os.path.relpath(".", place(page).parent)
    title = re.search(r"^# (.*)$", page.read_text(), re.M)[1]
    for name, value in {"title": html.escape(title), "up": up, "menu": menu(page), "body": body}.items():
        template = template.replace("{{" + name + "}}", value)
    return template


def build(folder):
    out = pathlib.Path(folder)
    template = (DOCS / "site/page.html").read_text()
    shutil.rmtree(out, ignore_errors=True)
    for page in pages():
        file = out / place(page)
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(render(page, template))
    for other in DOCS.rglob("*"):
        if other.suffix in COPIED:
            copy = out / other.relative_to(DOCS)
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(other, copy)
    shutil.copy(DOCS / "site/style.css", out)
    print(out / "index.html")


if __name__ == "__main__":
    if sys.argv[1:] == ["check"]:
        check()
    elif len(sys.argv) == 3 and sys.argv[1] == "build":
        build(sys.argv[2])
    else:
        sys.exit(__doc__)
