"""Runs the notebook and writes it as a page with its pictures: notebook_page.py FOLDER

Into FOLDER, such as docs, go first-steps.md and first-steps-N.png. Needs the package dbapi, nbclient and ipykernel.
"""

import base64
import os
import pathlib
import sys
import tempfile

import nbclient
import nbformat

HERE = pathlib.Path(__file__).resolve().parent
NOTEBOOK = HERE / "first_steps.ipynb"


def run():
    """The notebook with its outputs, run in a folder of its own."""
    notebook = nbformat.read(NOTEBOOK, as_version=4)
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(HERE / "measurements", pathlib.Path(folder) / "measurements")
        client = nbclient.NotebookClient(
            notebook, timeout=300, kernel_name="python3", resources={"metadata": {"path": folder}}
        )
        # Whatever is asked for outside: the pictures belong into the cells.
        os.environ["MPLBACKEND"] = "module://matplotlib_inline.backend_inline"
        return client.execute()


def indented(text):
    return "".join(f"    {line}".rstrip() + "\n" for line in text.rstrip("\n").split("\n"))


def page(notebook, folder):
    """The text of the page; the pictures are written into the folder."""
    parts = []
    pictures = 0
    for cell in notebook.cells:
        if cell.cell_type == "markdown":
            parts.append(cell.source + "\n")
            continue
        parts.append("```python\n" + cell.source + "\n```\n")
        for output in cell.outputs:
            data = output.get("data", {})
            if "image/png" in data:
                pictures += 1
                name = f"first-steps-{pictures}.png"
                (folder / name).write_bytes(base64.b64decode(data["image/png"]))
                parts.append(f"![The picture of the cell above]({name})\n")
            elif output.output_type == "stream" and output.name == "stdout":
                parts.append(indented(output.text))
            elif "text/plain" in data:
                parts.append(indented(data["text/plain"]))
    head = "<!-- Made from examples/first_steps.ipynb by examples/notebook_page.py -->\n"
    return "\n".join([head, *parts])


if __name__ == "__main__":
    target = pathlib.Path(sys.argv[1])
    (target / "first-steps.md").write_text(page(run(), target), encoding="utf8")
