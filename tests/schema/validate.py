#!/usr/bin/env python3
"""Validates documents against the schemas of docs/schema.

Prints a line "WHERE: PROBLEM" for each problem. Exits with 0 if there are no problems, 1 if
there are some, 2 on wrong use. Needs the package jsonschema.
"""
import argparse
import json
import pathlib
import sys

from jsonschema import Draft202012Validator, RefResolver

SUFFIX = ".schema.json"
FILLED = ("measured", "constant", "never")


def join(base, reference):
    """Resolves the references of the schemas: a fragment or a whole name. Names like urn:x have no path."""
    return base.partition("#")[0] + reference if reference.startswith("#") else reference


class Schemas:
    def __init__(self, folder):
        self.by_name = {}
        for path in sorted(folder.glob("*" + SUFFIX)):
            self.by_name[path.name[: -len(SUFFIX)]] = json.loads(path.read_text("utf-8"))
        self.store = {schema["$id"]: schema for schema in self.by_name.values()}
        self.validators = {}
        for name, schema in self.by_name.items():
            Draft202012Validator.check_schema(schema)
            resolver = RefResolver(schema["$id"], schema, store=self.store, urljoin_cache=join)
            self.validators[name] = Draft202012Validator(schema, resolver=resolver)

    def target(self, place):
        """The schema at a place such as urn:x#/$defs/y."""
        name, _, pointer = place.partition("#")
        schema = self.store[name]
        for key in pointer.split("/")[1:]:
            schema = schema[key]
        return schema

    def resolve(self, place):
        """The places from here along the references; the last one has no reference."""
        places = [place]
        while "$ref" in self.target(places[-1]):
            places.append(join(places[-1], self.target(places[-1])["$ref"]))
        return places

    def annotation(self, place, key):
        """An annotation of the schema or, if it has none, of those that it refers to."""
        found = (self.target(step).get(key) for step in self.resolve(place))
        return next((value for value in found if value), None)


def objects(schema, place):
    """The places from here on that define the properties of an object."""
    if "properties" in schema:
        yield place
    for key in ("properties", "$defs"):
        for name, inner in schema.get(key, {}).items():
            yield from objects(inner, f"{place}/{key}/{name}")
    if "items" in schema:
        yield from objects(schema["items"], place + "/items")


def all_objects(schemas):
    for name, schema in schemas.store.items():
        yield from objects(schema, name + "#")


def properties(schemas, place):
    return [f"{place}/properties/{name}" for name in schemas.target(place)["properties"]]


def cover(schemas, place, value, seen):
    """Adds the properties of a valid document that are not null."""
    for step in schemas.resolve(place):
        schema = schemas.target(step)
        if isinstance(value, dict):
            for key in value.keys() & schema.get("properties", {}).keys():
                if value[key] is not None:
                    seen.add(f"{step}/properties/{key}")
                    cover(schemas, f"{step}/properties/{key}", value[key], seen)
        elif isinstance(value, list) and "items" in schema:
            for element in value:
                cover(schemas, step + "/items", element, seen)


def numbers(schemas, place):
    types = schemas.annotation(place, "type") or []
    return {"integer", "number"} & set([types] if isinstance(types, str) else types)


def check_annotations(schemas):
    for place in all_objects(schemas):
        if schemas.target(place).get("additionalProperties") is not False:
            yield f"{place}: takes unknown keys"
        for item in properties(schemas, place):
            for key in ("description", "x-source") + ("x-unit",) * bool(numbers(schemas, item)):
                if not isinstance(schemas.annotation(item, key), str):
                    yield f"{item}: has no {key}"
            if schemas.annotation(item, "x-filled") not in FILLED:
                yield f"{item}: x-filled is none of {', '.join(FILLED)}"


def check_document(validator, path):
    try:
        document = json.loads(path.read_text("utf-8"))
    except ValueError as error:
        return [f"{path}: is no JSON: {error}"], None
    problems = []
    for error in validator.iter_errors(document):
        pointer = "".join(f"/{step}" for step in error.absolute_path)
        problems.append(f"{path}#{pointer}: {error.message[-300:]}")
    return problems, document


def documents(paths, schema):
    """Files with the names of their schemas: a folder has a subfolder for each schema."""
    for path in paths:
        for file in sorted(path.rglob("*")) if path.is_dir() else [path]:
            if file.is_file():
                yield file, schema or file.parent.name


def check(arguments):
    schemas = Schemas(arguments.schemas)
    seen = set()
    held = set()
    for path, name in documents(arguments.paths, arguments.schema):
        if name not in schemas.validators:
            raise LookupError(f"{path}: there is no schema {name}")
        held.add(schemas.by_name[name]["$id"])
        problems, document = check_document(schemas.validators[name], path)
        yield from problems
        if not problems:
            cover(schemas, schemas.by_name[name]["$id"] + "#", document, seen)
    if arguments.annotations:
        yield from check_annotations(schemas)
    if arguments.cover:
        for place in all_objects(schemas):
            if place.partition("#")[0] in held:
                yield from (f"{it}: occurs in no valid document"
                            for it in properties(schemas, place) if it not in seen)


def main():
    home = pathlib.Path(__file__).resolve().parents[2] / "docs" / "schema"
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("paths", nargs="*", type=pathlib.Path, metavar="PATH",
                        help="document, or folder with documents in subfolders named as schemas")
    parser.add_argument("--schema", help="schema of all the documents, such as inventory")
    parser.add_argument("--schemas", type=pathlib.Path, default=home, help="folder of the schemas")
    parser.add_argument("--annotations", action="store_true",
                        help="each property must be described, each object closed")
    parser.add_argument("--cover", action="store_true",
                        help="each property of the documents' schemas must occur in a valid one")
    failed = False
    try:
        for problem in check(parser.parse_args()):
            print(problem)
            failed = True
    except (OSError, LookupError) as error:
        parser.error(str(error))
    sys.exit(failed)


if __name__ == "__main__":
    main()
