"""Pages that tell a JSON schema in tables: every member, its type, what it means."""
import json


def cell(text):
    return " ".join(str(text).split()).replace("|", "\\|").replace("<", "&lt;")


def type_of(schema):
    """In words, with the values where there are only some."""
    if "$ref" in schema:
        return schema["$ref"].rsplit("/", 1)[-1]
    if "const" in schema:
        return f"`{json.dumps(schema['const'])}`"
    if "enum" in schema:
        return ", ".join(f"`{value}`" for value in schema["enum"])
    for choice in ("oneOf", "anyOf"):
        kinds = [type_of(one) for one in schema.get(choice, []) if one.keys() & {"$ref", "type", "enum", "const", "items"}]
        if kinds:
            return " or ".join(kinds)
    kinds = schema.get("type", "object" if "properties" in schema else "any value")
    kind = " or ".join(kinds) if isinstance(kinds, list) else kinds
    if kind == "array" and "items" in schema:
        return f"list of {type_of(schema['items'])}"
    return kind + limits_of(schema)


def limits_of(schema):
    least, most = schema.get("minimum"), schema.get("maximum")
    if least is not None and most is not None:
        return f", {least} to {most}"
    return "" if least is None else f", at least {least}"


def inner(schema):
    """The schemas of objects within, with what is added to the name of their place."""
    if "properties" in schema:
        yield "", schema
    for part in schema.get("oneOf", []) + schema.get("anyOf", []):
        yield from inner(part)
    if isinstance(schema.get("items"), dict):
        yield from (("[]" + suffix, one) for suffix, one in inner(schema["items"]))
    if isinstance(schema.get("additionalProperties"), dict):
        yield from ((".*" + suffix, one) for suffix, one in inner(schema["additionalProperties"]))


def rows_of(schema, path=""):
    """A row for each member, and after it those of the objects within."""
    required = schema.get("required", [])
    for name, member in schema.get("properties", {}).items():
        place = f"{path}.{name}" if path else name
        need = "" if name in required else "optional"
        yield f"| `{place}` | {cell(type_of(member))} | {need} | {cell(member.get('description', ''))} |"
        for suffix, one in inner(member):
            yield from rows_of(one, place + suffix)


def table_of(schema):
    rows = [row for suffix, one in inner(schema) for row in rows_of(one, suffix.lstrip("."))]
    if not rows:
        return cell(f"{type_of(schema)}: {schema.get('description', schema.get('pattern', ''))}") + "\n"
    return "\n".join(["| Member | Type | | Meaning |", "|---|---|---|---|", *rows]) + "\n"


def schema_page(name, schema, meaning):
    text = f"# {schema.get('title', name)}\n\n{meaning}\n\n{table_of(schema)}\n"
    for part, definition in schema.get("$defs", {}).items():
        text += f"## {part}\n\n{cell(definition.get('description', ''))}\n\n{table_of(definition)}\n"
    return text + f"## The schema\n\n````json\n{json.dumps(schema, indent=2, ensure_ascii=False)}\n````\n"
