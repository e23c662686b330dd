#!/usr/bin/python3
"""validate_json.py SCHEMA-FILE DEFINITION: whether the document on standard input is what the definition describes."""
import json
import sys

import jsonschema

with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
part = {"$ref": "#/$defs/" + sys.argv[2], "$defs": schema["$defs"]}
errors = list(jsonschema.Draft202012Validator(part).iter_errors(json.load(sys.stdin)))
for error in errors:
    print(error.json_path + ": " + error.message)
sys.exit(1 if errors else 0)
