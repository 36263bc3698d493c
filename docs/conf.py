# How package.sh makes the manual from these pages: sphinx-build -b html docs FOLDER
import re
from pathlib import Path

from docutils.nodes import reference
from sphinx.addnodes import download_reference

project = "Veltrano FrameWork"
author = "VELTRANO Software Technologies"
copyright = author  # noqa: A001: Sphinx's name
release = version = re.search(r"project\(.* VERSION ([\d.]+)", (Path(__file__).parent.parent / "CMakeLists.txt").read_text()).group(1)

extensions = ["myst_parser"]
root_doc = "index"
exclude_patterns = ["reference/notes"]
# Headings can be linked to by their text, three levels deep, as on the pages of the repository.
myst_heading_anchors = 3

html_theme = "furo"
html_title = f"{project} {version}"
html_static_path = ["style"]
html_css_files = ["manual.css"]
html_copy_source = False
html_show_sphinx = False
html_show_sourcelink = False
pygments_style = "friendly"
html_use_index = False

# The contents of the manual. Added to the first page here, since the repository's readers would see the directives as code.
CONTENTS = {
    "Start": "quick-start did-it-work cookbook leaving-vbscript migration-64-bit veltrano-program administrators what-is-kept",
    "Languages": "hosts/vbscript hosts/jscript hosts/vba hosts/powershell hosts/python hosts/csharp hosts/cpp hosts/linux",
    "Reference": "reference/VeltranoPDF reference/VeltranoKML reference/VeltranoXML reference/VeltranoINI reference/VeltranoMDB "
                 "reference/VeltranoJPG reference/VeltranoPNG reference/VeltranoWEV reference/VeltranoGIS",
    "Formats": "kml settings imaging access",
}


def add_contents(app, page, source):
    if page == root_doc:
        for caption, pages in CONTENTS.items():
            source[0] += "\n".join(["", "```{toctree}", ":hidden:", f":caption: {caption}", "", *pages.split(), "```", ""])


def link_to_samples(app, doctree):
    """Links to samples lead to those of the package, which lie beside the manual, instead of copies in it."""
    for node in list(doctree.findall(download_reference)):
        link = reference("", "", *node.children, refuri=node["reftarget"], internal=False)
        node.replace_self(link)


def setup(app):
    app.connect("source-read", add_contents)
    # Before Sphinx collects what it would copy.
    app.connect("doctree-read", link_to_samples, priority=100)
