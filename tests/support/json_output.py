"""What the program prints with --json, held against its schema: nothing that is missing there, and nothing more."""

import json
import pathlib

import jsonschema

TREE = pathlib.Path(__file__).resolve().parents[2]
SCHEMA = TREE / "platform/data/schemas/json/output_1_0.json"


def forbid_more(schema):
    """@return the schema with every member that it does not know forbidden"""
    if isinstance(schema, list):
        return [forbid_more(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    strict = {name: forbid_more(part) for name, part in schema.items()}
    return {**strict, "additionalProperties": False} if schema.get("type") == "object" else strict


VALIDATOR = jsonschema.Draft4Validator(forbid_more(json.loads(SCHEMA.read_text("utf-8"))))


def find_faults(document):
    return [f"{error.json_path}: {error.message[:300]}" for error in VALIDATOR.iter_errors(document)]
