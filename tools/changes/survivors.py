"""The list of changes that no test needs to see, each with the reason.

A text of paragraphs, one for each change:

    file: src/path/of/file.cpp
    kind: condition
    line: the line of the source, without the space around it
    before: what the change takes
    after: what it makes of it
    reason: why nobody can tell the difference

Lines with # are comments. An entry whose file is gone counts for any file: code moves.
"""

FIELDS = ("file", "kind", "line", "before", "after", "reason")


def read(path):
    entries = []
    text = path.read_text(encoding="utf-8") if path.exists() else ""
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    for paragraph in "\n".join(lines).split("\n\n"):
        entry = dict(line.split(": ", 1) for line in paragraph.splitlines() if line.strip())
        if not entry:
            continue
        missing = [field for field in FIELDS if not entry.get(field, "").strip()]
        if missing or set(entry) - set(FIELDS):
            raise ValueError(f"{path}: an entry without {', '.join(missing) or 'fault has fields of no meaning'}:\n{paragraph}")
        entries.append(entry)
    return entries


def known(candidate, entries, files):
    """The entry that accepts the change, or None."""
    for entry in entries:
        same = (entry["kind"], entry["line"], entry["before"], entry["after"]) == \
            (candidate.kind, candidate.line_text, candidate.before, candidate.after)
        if same and (entry["file"] == candidate.path or entry["file"] not in files):
            return entry
    return None


def paragraph(candidate, reason):
    values = (candidate.path, candidate.kind, candidate.line_text, candidate.before, candidate.after, reason)
    return "".join(f"{field}: {value}\n" for field, value in zip(FIELDS, values))
