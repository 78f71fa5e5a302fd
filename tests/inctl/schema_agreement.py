# Whether the schema and the library judge every value of every key alike: schema_agreement.py INCTL
import itertools, json, os, re, subprocess, sys, tempfile

import jsonschema

inctl = sys.argv[1]
schema = json.loads(subprocess.run([inctl, "check", "--schema"], check=True, capture_output=True, text=True).stdout)
jsonschema.Draft202012Validator.check_schema(schema)
judge = jsonschema.Draft202012Validator(schema)

texts = """0 1 -1 -0 5 255 256 65535 65536 0x0 0xff 0xFF 0x100 0XFfFF 0x10000 -0x1 007 9223372036854775807 -9223372036854775808
    9223372036854775808 -9223372036854775809 0x7fffffffffffffff 0x8000000000000000 1.5 1e3 0x +1 true false True null
    10.0.0.1 010.000.0.01 10.0.0 10.0.0.256 10.0.0.1.2 10.0.0.1/8 10.0.0.1/33 10.0.0.1/-1 10.0.0.1/ 10.0.0.1/08 /8 :: ::1
    fd00::1 fd00::1/64 fd00::/129 1:2:3:4:5:6:7:8 1:2:3:4:5:6:7:: 1::3:4:5:6:7:8 ::3:4:5:6:7:8 ::2:3:4:5:6:7:8 1::2::3
    ::1.2.3.4 1:2:3:4:5:6:1.2.3.4 ::2:3:4:5:6:1.2.3.4 1::2:3:4:5:1.2.3.4 1:2:3:4:5:6:7:1.2.3.4 fffff::1 0000a::1 g::1 ::ffff
    """.split() + ["", " ", "a b", "é", " 10.0.0.1 ", "10.0.0.1 /8", " ::1", "|", "a|b"]
others = [0, 1, -1, 7, 255, 256, 65535, 65536, 2**63 - 1, 2**63, -2**63, -2**63 - 1, 1.5, True, False, None,
          {}, [], [1], ["a"], [{}], {"a": 1}, {"firstPort": 1, "count": 2}, {"firstPort": 1}, {"count": "0x10"},
          {"firstPort": 0, "count": 2}, {"cacheTimeout": 1}]

names = sorted(set(re.findall(r"\b[A-Z][A-Z0-9]*(?:_[A-Z0-9]+)+\b", json.dumps(schema))))
flags = [a + join + b for a, b in [(n, n) for n in names if "_FLAG_" in n] for join in ("|", " | ", "||", " ")]
values = texts + others + names + flags + [n.lower() for n in names] + [n + "_" for n in names]


def paths(keys, way=()):
    """The ways to the keys of a schema of objects."""
    for key, inner in keys.get("properties", {}).items():
        yield way + (key,)
        for part in inner.get("allOf", []):
            yield from paths(part, way + (key,))


def configured(way, value):
    config = value
    for key in reversed(way):
        config = {key: config}
    # A range counts as a whole only; a network of an interface stack needs nothing.
    if len(way) > 1 and way[-2] == "portRange":
        config[way[0]]["portRange"] = {"firstPort": 1, "count": 1, way[-1]: value}
    return config


cases = []
for sort in [name for name in schema["$defs"] if name != "record"]:
    ways = list(paths(schema["$defs"][sort]))
    assert ways, sort
    for way, value in itertools.product(ways + [("unknownKey",), (ways[-1][0], "unknownKey")], values):
        # What a condition or a stack is called is a relation to the record of that name, which a schema cannot see.
        named = {"csConditionName": "condition", "stackName": "stack"}
        if way[-1] in named and isinstance(value, str) and re.fullmatch("[0-9A-Za-z_.-]+", value):
            value = named[way[-1]]
        cases.append({"sort": sort, "config": configured(way, value)})

disagreements = accepted = 0
for start in range(0, len(cases), 800):  # fewer than the errors that are told
    objects = {f"case{i}": case for i, case in enumerate(cases[start:start + 800])}
    objects |= {"condition": {"sort": "CS_CONDITION"}, "stack": {"sort": "IN_STACK"}}
    with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
        json.dump({"objects": objects}, file)
        file.flush()
        result = subprocess.run([inctl, "check", file.name, "--json"], capture_output=True, text=True)
    assert result.returncode in (0, 3), result.stderr
    refused = {d["record"] for d in json.loads(result.stdout)["diagnoses"] if d["severity"] == "error"}
    for name, case in objects.items():
        good = judge.is_valid({"objects": {name: case}})
        accepted += good
        if good != (name not in refused):
            disagreements += 1
            print("schema", "accepts" if good else "refuses", json.dumps(case), file=sys.stderr)
print(len(cases), "values,", accepted, "accepted,", disagreements, "disagreements")
sys.exit(disagreements > 0 or accepted < len(cases) / 20)
