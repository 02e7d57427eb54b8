"""Checks `knmime tree --json` output read from standard input against its documented form:
one object per line with exactly the keys below, and nodes nested by path. Prints
"N messages ok" or the first problem (and exits 1)."""
import json
import sys

MESSAGE_KEYS = {"defects", "from", "to", "subject", "date", "root"}
DEFECT_KEYS = {"kind", "path", "offset", "text"}
NODE_KEYS = {"path", "type", "charset", "encoding", "disposition", "filename", "size", "parts"}


def fail(text):
    print(text)
    sys.exit(1)


def expect(condition, text):
    if not condition:
        fail(text)


def string_or_null(value):
    return value is None or isinstance(value, str)


def check_node(node, path):
    expect(isinstance(node, dict) and set(node) == NODE_KEYS, f"node {path}: keys {sorted(node)}")
    expect(node["path"] == path, f"node {path}: path {node['path']!r}")
    expect(isinstance(node["type"], str) and node["type"] == node["type"].lower() and "/" in node["type"],
           f"node {path}: type {node['type']!r}")
    for key in ("charset", "encoding", "disposition", "filename"):
        expect(string_or_null(node[key]), f"node {path}: {key} {node[key]!r}")
    expect(node["encoding"] is None or node["encoding"] == node["encoding"].lower(), f"node {path}: encoding case")
    parts = node["parts"]
    expect(isinstance(parts, list), f"node {path}: parts")
    # A multipart has no size; one the reader could not split is a leaf and has one.
    if node["size"] is None:
        expect(node["type"].startswith("multipart/"), f"node {path}: only a multipart has size null")
    else:
        expect(isinstance(node["size"], int) and node["size"] >= 0, f"node {path}: size {node['size']!r}")
        expect(len(parts) <= 1, f"node {path}: a leaf holds at most its attached message")
    prefix = "" if path == "." else path + "."
    for number, part in enumerate(parts, 1):
        check_node(part, f"{prefix}{number}")


count = 0
for line in sys.stdin:
    message = json.loads(line)
    expect(isinstance(message, dict) and set(message) == MESSAGE_KEYS, f"message keys {sorted(message)}")
    for key in ("from", "to", "subject", "date"):
        expect(string_or_null(message[key]), f"{key} {message[key]!r}")
    for defect in message["defects"]:
        expect(set(defect) == DEFECT_KEYS and isinstance(defect["offset"], int), f"defect {defect!r}")
    check_node(message["root"], ".")
    count += 1
expect(count > 0, "no output")
print(f"{count} messages ok")
