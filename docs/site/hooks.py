"""What mkdocs does besides: the search leaves out sources, and works from files, where a page may not read its index."""
import json
import pathlib


def on_post_build(config, **_):
    search = pathlib.Path(config["site_dir"]) / "search"
    index = json.loads((search / "search_index.json").read_text(encoding="utf-8"))
    index["docs"] = [place for place in index["docs"] if not place["location"].startswith("source/")]
    (search / "search_index.json").write_text(json.dumps(index), encoding="utf-8")
    (search / "index.js").write_text(f"var __search = {{ index: Promise.resolve({json.dumps(index)}) }};\n", encoding="utf-8")
