"""Checks a JSON value against the part of JSON Schema that docs/schemas uses."""

import json

TYPES = {"object": dict, "array": list, "string": str, "number": (int, float), "integer": int,
         "boolean": bool, "null": type(None)}
KNOWN = {"$schema", "title", "type", "enum", "required", "properties", "additionalProperties", "items"}


def problems(value, schema, place="$"):
    """Yields a line for each place where the value is not as the schema says."""
    assert set(schema) <= KNOWN, f"{place}: the checker does not know {set(schema) - KNOWN}"
    types = schema.get("type", list(TYPES))
    types = [types] if isinstance(types, str) else types
    if not any(isinstance(value, TYPES[name]) and (name == "boolean") == isinstance(value, bool) for name in types):
        yield f"{place}: {value!r} is none of {types}"
    if "enum" in schema and value not in schema["enum"]:
        yield f"{place}: {value!r} is none of {schema['enum']}"
    if isinstance(value, list):
        for index, item in enumerate(value):
            yield from problems(item, schema.get("items", {}), f"{place}[{index}]")
    if isinstance(value, dict):
        for name in schema.get("required", []):
            if name not in value:
                yield f"{place}: no {name}"
        for name, item in value.items():
            inner = schema.get("properties", {}).get(name, schema.get("additionalProperties", {}))
            if inner is False:
                yield f"{place}: {name} is not described"
            else:
                yield from problems(item, inner, f"{place}.{name}")


def problems_of_file(value, path):
    with open(path, encoding="utf-8") as file:
        return list(problems(value, json.load(file)))
