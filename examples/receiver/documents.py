"""Reads, checks, applies and writes the documents: docs/documents.md and docs/file-inventory.md."""

import json
import pathlib
import re

from jsonschema import Draft202012Validator, RefResolver

from sealed import NotUsable

SCHEMAS = {file.name.split(".")[0]: json.loads(file.read_text("utf-8"))
           for file in (pathlib.Path(__file__).resolve().parents[2] / "docs/schema").glob("*inventory.schema.json")}
# A fragment belongs to the schema that it is in: a name like urn:x has no path to join it with.
JOIN = {"urljoin_cache": lambda base, to: base.partition("#")[0] + to if to.startswith("#") else to,
        "store": {schema["$id"]: schema for schema in SCHEMAS.values()}}
VALIDATORS = {name: Draft202012Validator(schema, resolver=RefResolver(schema["$id"], schema, **JOIN))
              for name, schema in SCHEMAS.items()}
# The fields that tell two records of a list apart.
IDENTITIES = {key: section["x-identity"] for key, section in SCHEMAS["inventory"]["properties"].items()
              if "x-identity" in section}
CREATED, MODIFIED, REMOVED = 1, 2, 3


class Gap(Exception):
    """An incremental document does not fit: one before it was lost."""


# A byte that is not UTF-8 is held as a lone surrogate: U+DC80 and up if it is in the text itself, U+D880 and up
# if the text has the escape of its number. So each is written as it was read.

def parse(text):
    characters = re.sub(r"\\(?:u00([89a-f][0-9a-f])|.)",
                        lambda found: chr(0xD800 + int(found[1], 16)) if found[1] else found[0],
                        text.decode("utf-8", "surrogateescape"))
    try:
        return json.loads(characters)
    except (ValueError, RecursionError) as error:
        raise NotUsable(f"no document: {error}") from error


def text_of(value):
    """The bytes that the agent writes for a value."""
    text = re.sub("[\ud880-\ud8ff]", lambda found: f"\\u{ord(found[0]) - 0xD800:04x}", characters_of(value))
    return text.encode("utf-8", "surrogateescape")


def characters_of(value):
    if isinstance(value, dict):
        return "{" + ",".join(f"{json.dumps(key, ensure_ascii=False)}:{characters_of(value[key])}"
                              for key in sorted(value, key=in_order)) + "}"
    if isinstance(value, list):
        return "[" + ",".join(map(characters_of, value)) + "]"
    return f"{value:g}" if isinstance(value, float) else json.dumps(value, ensure_ascii=False)


def in_order(text):
    """Sorts texts as the agent does: bytes that are not UTF-8 come last."""
    return re.sub("[\ud800-\udfff]", lambda found: chr(0x10FF00 + (ord(found[0]) & 0xFF)), text)


def kind_of(document):
    """The inventory that a document belongs to, and whether it holds only changes. Throws if it follows no schema."""
    keys = document if isinstance(document, dict) else {}
    inventory = "file-inventory" if "typeInventory" in keys else "inventory"
    is_incremental = "update" in keys or keys.get("typeInventory") == 1
    schema = "incremental-inventory" if "update" in keys else inventory
    # A later version of the agent may add keys, which the schemas of this version reject.
    errors = (error for error in VALIDATORS[schema].iter_errors(document) if error.validator != "additionalProperties")
    for error in errors:
        raise NotUsable(f"no {schema}: {'/'.join(map(str, error.absolute_path))}: {error.message[-200:]}")
    return inventory, is_incremental


def apply(document, changes):
    """The full document after an incremental one. Throws `Gap`."""
    result = {**document, "device": changes["device"]}
    if "paths" in changes:
        return {**result, "paths": apply_to_files(document["paths"], changes["paths"])}
    created, deleted, updated = (changes[part] or {} for part in ("create", "delete", "update"))
    for section in {*created, *deleted, *updated}:
        if section in IDENTITIES:
            parts = (part.get(section) or [] for part in (created, deleted, updated))
            result[section] = apply_to_list(section, document[section] or [], *parts)
        elif updated.get(section):
            lost = section == "location" and not any(updated[section].values())
            result[section] = None if lost else updated[section]
    return result


def apply_to_list(section, records, created, deleted, updated):
    def identity(record):
        return tuple(record[key] for key in IDENTITIES[section])

    def fit(record, is_there):
        if (identity(record) in places) != is_there:
            raise Gap(f"a record of {section} is {'not ' if is_there else ''}there: {identity(record)}")
    # The first of several records with one identity counts.
    records, places = list(records), {identity(record): place for place, record in reversed([*enumerate(records)])}
    for record in created:
        fit(record, False)
    for record in deleted:
        fit(record, True)
    for record in updated:
        if section == "memorySlot" and identity(record) not in places:
            records.append(record)  # only updates of this section are reported
        else:
            fit(record, True)
            records[places[identity(record)]] = record
    gone = set(map(identity, deleted))
    return [record for record in records if identity(record) not in gone] + created or None


def apply_to_files(folders, changes):
    def fit(key, is_there):
        if bool(files.get(key)) != is_there:
            raise Gap(f"a file is {'not ' if is_there else ''}there: {key}")
    files, changed, paths = {}, {REMOVED: [], MODIFIED: [], CREATED: []}, {}
    for key, record in files_of(folders):
        files.setdefault(key, []).append(record)
    for key, record in files_of(changes):
        changed[record["fileStatus"]].append((key, {**record, "fileStatus": -1}))
    # Removals first: a file whose extension changes its case only is removed and created under one key.
    for key, record in changed[REMOVED]:
        fit(key, True)
        files[key].pop(files[key].index(record) if record in files[key] else 0)
    for key, record in changed[MODIFIED]:
        fit(key, True)
        files[key][0] = record
    for key, _ in changed[CREATED]:
        fit(key, False)
    for key, record in changed[CREATED]:
        files.setdefault(key, []).append(record)
    for key in sorted(files, key=lambda key: tuple(map(in_order, key))):
        if files[key]:
            paths.setdefault(key[0], []).extend(files[key])
    return [{"files": records, "pathName": path} for path, records in paths.items()]


def files_of(folders):
    return (((folder["pathName"], record["filename"], record["extension"]), record)
            for folder in folders for record in folder["files"])
