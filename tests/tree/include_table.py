"""Holds every include of the source tree to the table of docs/architecture.md.

The table's first column names a folder, its third the folders that the folder may include. A folder named with a
trailing slash and no more stands for everything below it that has no row of its own. A folder may always include itself.
Fails for an include that the table does not allow, a folder with sources but without a row, a row that allows what no
file uses, and a row of a folder that does not exist.
"""
import argparse
import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)
FOLDER = re.compile(r"`([^`]+)/`")
SOURCES = {".h", ".cpp", ".c", ".rc"}


def read_table(page):
    """The folders that each folder may include, in the order of the page's rows."""
    table = {}
    for line in page.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if line.startswith("| `") and len(cells) == 3 and FOLDER.match(cells[0]):
            table[FOLDER.match(cells[0])[1]] = set(FOLDER.findall(cells[2]))
    return table


def folder_of(path, folders):
    """The row that a path belongs to: the longest folder that it lies in; None if there is none."""
    fitting = [folder for folder in folders if path.startswith(folder + "/")]
    return max(fitting, key=len, default=None)


def sources(root, folders):
    for top in sorted({folder.split("/")[0] for folder in folders}):
        yield from (path for path in sorted((root / top).rglob("*")) if path.suffix in SOURCES)


def target_of(name, path, root):
    """What an include names, relative to the root; None for a header of the system."""
    for base in (root, root / "include", root / "platform" / "linux", path.parent):
        if (base / name).is_file():
            return (base / name).resolve().relative_to(root).as_posix()
    return None


def faults_of(root, table):
    used = {folder: set() for folder in table}
    files = 0
    for path in sources(root, table):
        name = path.relative_to(root).as_posix()
        own = folder_of(name, table)
        files += 1
        if own is None:
            yield f"{name}: no row of the table names its folder"
            continue
        text = path.read_text(encoding="utf-8")
        for match in INCLUDE.finditer(text):
            target = target_of(match[1], path, root)
            other = folder_of(target, table) if target else None
            if other is None or other == own:
                continue
            used[own].add(other)
            if other not in table[own]:
                line = text.count("\n", 0, match.start(1)) + 1
                yield f"{name}:{line}: `{own}/` may not include `{other}/` ({match[1]})"
    for folder, allowed in table.items():
        if not (root / folder).is_dir():
            yield f"the table names `{folder}/`, which does not exist"
        for other in sorted(allowed - used[folder]):
            yield f"the table allows `{folder}/` to include `{other}/`, which no file does"
    print(f"{files} files, {len(table)} rows")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("root", type=Path, help="the source tree")
    root = parser.parse_args().root.resolve()
    table = read_table(root / "docs" / "architecture.md")
    if not table:
        sys.exit("docs/architecture.md: no table of folders")
    faults = list(faults_of(root, table))
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
