"""Holds the scene files against their JSON Schema.

Usage: check_schema.py SCHEMA EXAMPLES

Every scene under EXAMPLES must be valid. Of those in EXAMPLES/broken, the structure-* ones must be
refused, and the meaning-* ones must pass: a schema cannot see what is wrong with them. The syntax-*
ones are no JSON. Ends with 1 after naming each file for which this does not hold.
"""

import json
import pathlib
import sys

import jsonschema


def scenes(examples):
    """(file, whether the schema must accept it) of every scene that is JSON."""
    for file in sorted(examples.rglob("*.json")):
        if file.parent.name != "broken":
            yield file, True
        elif not file.name.startswith("syntax-"):
            yield file, file.name.startswith("meaning-")


def main(schema_file, examples):
    schema = json.loads(pathlib.Path(schema_file).read_text(encoding="utf-8"))
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    wrong = 0
    counted = {True: 0, False: 0}
    for file, must_be_valid in scenes(pathlib.Path(examples)):
        counted[must_be_valid] += 1
        error = jsonschema.exceptions.best_match(validator.iter_errors(json.loads(file.read_text(encoding="utf-8"))))
        if (error is None) != must_be_valid:
            wrong += 1
            print(f"{file}: {error.json_path + ': ' + error.message if error else 'accepted, but must be refused'}")
    print(f"{counted[True]} scenes to be accepted, {counted[False]} to be refused, {wrong} wrong")
    return 1 if wrong or not all(counted.values()) else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
