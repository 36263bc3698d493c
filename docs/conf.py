# How package.sh makes the manual from these pages: sphinx-build -b html docs FOLDER
import re
from pathlib import Path

project = "Veltrano FrameWork"
author = "VELTRANO Software Technologies"
copyright = author  # noqa: A001: Sphinx's name
release = version = re.search(r"project\(.* VERSION ([\d.]+)", (Path(__file__).parent.parent / "CMakeLists.txt").read_text()).group(1)

extensions = ["myst_parser"]
root_doc = "index"
exclude_patterns = ["reference/notes", "contributing"]
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
