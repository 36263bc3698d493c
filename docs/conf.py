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


def link_to_samples(app, doctree):
    """Links to samples lead to those of the package, which lie beside the manual, instead of copies in it."""
    for node in list(doctree.findall(download_reference)):
        link = reference("", "", *node.children, refuri=node["reftarget"], internal=False)
        node.replace_self(link)


def setup(app):
    # Before Sphinx collects what it would copy.
    app.connect("doctree-read", link_to_samples, priority=100)
