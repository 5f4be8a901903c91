"""Compares two drawings as ezdxf reads them: the second's audit must find
nothing, and every entity and object of the first must be in the second
with the same handle, kind and attributes. Prints one JSON object."""
import json
import math
import sys

import ezdxf


def same(a, b):
    if isinstance(a, float) or isinstance(b, float):
        return math.isclose(float(a), float(b), rel_tol=1e-12, abs_tol=1e-12)
    if isinstance(a, (tuple, list)) and isinstance(b, (tuple, list)):
        return len(a) == len(b) and all(same(x, y) for x, y in zip(a, b))
    if hasattr(a, "isclose"):
        return a.isclose(b, abs_tol=1e-12)
    return a == b


def describe(entity):
    attribs = entity.dxfattribs()
    attribs.pop("owner", None)
    kind = entity.dxftype()
    if kind == "MLINE":
        attribs["vertices"] = [
            (tuple(v.location), tuple(v.line_direction), tuple(v.miter_direction), v.line_params, v.fill_params)
            for v in entity.vertices
        ]
    elif kind == "MLINESTYLE":
        attribs["elements"] = [tuple(e) for e in entity.elements]
    elif kind == "LWPOLYLINE":
        attribs["points"] = list(entity.get_points("xyseb"))
    elif kind == "DICTIONARY":
        attribs["entries"] = sorted((k, v.dxf.handle if hasattr(v, "dxf") else v) for k, v in entity.items())
    if entity.xdata:
        attribs["xdata"] = {name: list(entity.get_xdata(name)) for name in entity.xdata.data}
    return kind, attribs


def records(path):
    doc = ezdxf.readfile(path)
    auditor = doc.audit()
    found = {}
    for entity in doc.entitydb.values():
        if entity.dxf.handle:
            found[entity.dxf.handle] = describe(entity)
    return doc, auditor, found


_, _, first = records(sys.argv[1])
doc, auditor, second = records(sys.argv[2])
differences = []
for handle, (kind, attribs) in first.items():
    other = second.get(handle)
    if other is None:
        differences.append(f"{kind} {handle} is missing")
    elif other[0] != kind:
        differences.append(f"{handle} is {other[0]}, was {kind}")
    else:
        for key in set(attribs) | set(other[1]):
            if not same(attribs.get(key), other[1].get(key)):
                differences.append(f"{kind} {handle} {key}: {attribs.get(key)!r} became {other[1].get(key)!r}")
print(json.dumps({
    "errors": [e.message for e in auditor.errors],
    "fixes": [f.message for f in auditor.fixes],
    "differences": differences,
    "records": len(second),
}))
